include(CMakePackageConfigHelpers)

# The components are packages of a distribution: classes, c, development, tool, python, and documents for an archive.
foreach(library KIVInterface kiv_c)
    if(library STREQUAL "kiv_c")
        set(component c)
    else()
        set(component classes)
    endif()
    install(TARGETS ${library} EXPORT KIVInterfaceTargets
        RUNTIME COMPONENT ${component}
        LIBRARY COMPONENT ${component} NAMELINK_COMPONENT development
        ARCHIVE COMPONENT development)
endforeach()
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
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
    install(TARGETS kiv COMPONENT tool)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/share/man/ DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT tool)
    if(NOT WIN32) # where the shells look
        install(DIRECTORY ${PROJECT_BINARY_DIR}/share/ DESTINATION ${CMAKE_INSTALL_DATADIR} COMPONENT tool PATTERN man EXCLUDE)
    endif()
endif()
install(DIRECTORY python/kiv DESTINATION lib/python3/dist-packages COMPONENT python EXCLUDE_FROM_ALL
    PATTERN __pycache__ EXCLUDE)

if(PROJECT_IS_TOP_LEVEL)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/inside.txt)
    file(STRINGS cmake/inside.txt inside REGEX "^[^#]")
    foreach(row IN LISTS inside)
        list(TRANSFORM row STRIP)
        list(GET row 0 name)
        list(GET row 1 package)
        list(GET row 3 place)
        if((place STREQUAL "tool" AND NOT KIV_BUILD_TOOL) OR (place STREQUAL "windows" AND NOT WIN32)
                OR (place STREQUAL "libkiv" AND WIN32))
            continue()
        endif()
        string(TOLOWER ${name} name)
        install(FILES /usr/share/doc/${package}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR}
            RENAME ${name}-licence.txt COMPONENT documents)
    endforeach()
    if(WIN32) # at the archive's top
        install(FILES cmake/windows-readme.txt DESTINATION . RENAME README.txt)
    endif()
    # Where the links between them hold.
    install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENCE.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
    install(FILES python/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/python)
    install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
        FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png")
    install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS
        PATTERN CMakeLists.txt EXCLUDE PATTERN __pycache__ EXCLUDE)
    include(cmake/Packages.cmake)
endif()
