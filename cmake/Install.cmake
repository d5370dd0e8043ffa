include(CMakePackageConfigHelpers)

install(TARGETS KIVInterface kiv_c EXPORT KIVInterfaceTargets)
if(kiv_library_type STREQUAL "STATIC")
    if(MINGW)
        install(FILES ${kiv_system_math} DESTINATION ${CMAKE_INSTALL_LIBDIR})
    endif()
elseif(KIV_LLVM_DLLTOOL)
    install(FILES ${kiv_lib} DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(kiv_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KIVInterface)
install(EXPORT KIVInterfaceTargets NAMESPACE KIVInterface:: DESTINATION ${kiv_package_dir})
configure_package_config_file(cmake/KIVInterfaceConfig.cmake.in KIVInterfaceConfig.cmake
    INSTALL_DESTINATION ${kiv_package_dir}
    PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_BINDIR CMAKE_INSTALL_INCLUDEDIR)
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(kiv_compatible ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
else()
    set(kiv_compatible ${PROJECT_VERSION_MAJOR})
endif()
configure_file(cmake/KIVInterfaceConfigVersion.cmake.in KIVInterfaceConfigVersion.cmake @ONLY)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/KIVInterfaceConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/KIVInterfaceConfigVersion.cmake
    DESTINATION ${kiv_package_dir})

file(RELATIVE_PATH kiv_prefix_from_pc
    /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
if(kiv_library_type STREQUAL "STATIC")
    set(kiv_static_cflags " -DKIV_STATIC")
    set(kiv_c_requires "Requires.private: KIVInterface")
    if(MINGW)
        set(kiv_system_math_libs " -lkiv_system_math")
    endif()
endif()
configure_file(cmake/KIVInterface.pc.in KIVInterface.pc @ONLY)
configure_file(cmake/kiv.pc.in kiv.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KIVInterface.pc ${CMAKE_CURRENT_BINARY_DIR}/kiv.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(KIV_BUILD_TOOL)
    install(TARGETS kiv)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/share/man/ DESTINATION ${CMAKE_INSTALL_MANDIR})
    if(NOT WIN32) # where the shells look
        install(DIRECTORY ${PROJECT_BINARY_DIR}/share/ DESTINATION ${CMAKE_INSTALL_DATADIR} PATTERN man EXCLUDE)
    endif()
    install(FILES ${KIV_DYGRAPHS_LICENCE} DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME dygraphs-licence.txt)
endif()

if(PROJECT_IS_TOP_LEVEL)
    if(WIN32) # at the archive's top
        install(FILES cmake/windows-readme.txt DESTINATION . RENAME README.txt)
    endif()
    # Where the links between them hold.
    install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
    install(FILES python/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/python)
    install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
        FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png")
    install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS
        PATTERN CMakeLists.txt EXCLUDE PATTERN __pycache__ EXCLUDE)
endif()
