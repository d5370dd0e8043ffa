# kiv_version_resource(TARGET FILE): what Windows shows of a DLL or a program.
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
endfunction()

# The shared library: the core's objects behind the module's frame, exporting its classes alone.
add_library(KIVInterface SHARED $<TARGET_OBJECTS:kiv_core> src/module/CKIVInterfaceApp.cpp)
add_library(KIVInterface::KIVInterface ALIAS KIVInterface)
target_include_directories(KIVInterface
    PRIVATE src
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(KIVInterface INTERFACE cxx_std_14)
set_target_properties(KIVInterface PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1)
kiv_compile_options(KIVInterface)

if(WIN32)
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
