# kiv_version_resource(TARGET FILE): what Windows shows of a DLL or a program, and its symbol file.
if(WIN32)
    enable_language(RC)
endif()
function(kiv_version_resource target file)
    cmake_path(GET file STEM name)
    cmake_path(GET file EXTENSION extension)
    if(extension STREQUAL ".exe")
        set(type VFT_APP)
    else()
        set(type VFT_DLL)
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/src/module/version.rc.in ${target}.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    # Names and addresses for the debuggers of Windows, which do not read the compiler's own form.
    target_link_options(${target} PRIVATE -Wl,--pdb=$<TARGET_FILE_DIR:${target}>/${file}.pdb)
endfunction()

# The class library: the core's objects behind the module's frame. The shared one exports its classes alone.
add_library(KIVInterface ${kiv_library_type} $<TARGET_OBJECTS:kiv_core> src/module/CKIVInterfaceApp.cpp)
add_library(KIVInterface::KIVInterface ALIAS KIVInterface)
target_include_directories(KIVInterface
    PRIVATE src
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(KIVInterface INTERFACE cxx_std_14)
set_target_properties(KIVInterface PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1)
kiv_compile_options(KIVInterface)

if(kiv_library_type STREQUAL "STATIC")
    target_compile_definitions(KIVInterface PUBLIC KIV_STATIC)
    if(MINGW) # before the toolchain's own sine: its digits are others
        target_link_libraries(KIVInterface INTERFACE $<BUILD_INTERFACE:${kiv_system_math}>
            $<INSTALL_INTERFACE:$<INSTALL_PREFIX>/${CMAKE_INSTALL_LIBDIR}/libkiv_system_math.a>)
        add_dependencies(KIVInterface kiv_system_math)
    endif()
elseif(WIN32)
    target_sources(KIVInterface PRIVATE src/support/platform/Unloading.cpp) # its run-time library is inside
    kiv_version_resource(KIVInterface KIVInterface.dll)
    set_target_properties(KIVInterface PROPERTIES PREFIX "")
else()
    set(exports ${PROJECT_SOURCE_DIR}/src/module/exports.map)
    target_link_options(KIVInterface PRIVATE -Wl,--version-script=${exports})
    set_target_properties(KIVInterface PROPERTIES LINK_DEPENDS ${exports})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_link_options(KIVInterface PRIVATE -Wl,-z,defs)
    endif()
endif()
