# The C surface: a second shared library over the same sources, exporting the functions of kiv.h alone.
add_library(kiv_c_objects OBJECT
    src/c/Blocks.cpp
    src/c/Uncertainty.cpp
    src/c/Parameters.cpp
    src/c/Refusal.cpp
    src/c/Sensor.cpp
    src/c/SettingChecks.cpp
    src/c/Settings.cpp
    src/c/Status.cpp
    src/c/Update.cpp
    src/support/platform/$<IF:$<BOOL:${WIN32}>,LastRefusalWindows.cpp,LastRefusalPosix.cpp>)
target_link_libraries(kiv_c_objects PUBLIC kiv_judging)
kiv_compile_options(kiv_c_objects)

if(kiv_library_type STREQUAL "STATIC")
    add_library(kiv_c STATIC $<TARGET_OBJECTS:kiv_c_objects> $<TARGET_OBJECTS:kiv_judging>)
    # A host in C is linked by a driver that knows neither of the two.
    target_link_libraries(kiv_c PUBLIC KIVInterface INTERFACE stdc++ m)
else()
    add_library(kiv_c SHARED $<TARGET_OBJECTS:kiv_c_objects>)
    target_link_libraries(kiv_c PRIVATE kiv_judging)
endif()
add_library(KIVInterface::kiv ALIAS kiv_c)
target_include_directories(kiv_c
    INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set_target_properties(kiv_c PROPERTIES
    OUTPUT_NAME kiv EXPORT_NAME kiv VERSION ${PROJECT_VERSION} SOVERSION 1)
kiv_compile_options(kiv_c)

if(kiv_library_type STREQUAL "STATIC")
    return()
endif()
set(kiv_def ${PROJECT_SOURCE_DIR}/src/c/kiv.def)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT KIV_SANITIZE)
    target_sources(kiv_c PRIVATE src/support/platform/Unloading.cpp) # its run-time library is inside on both systems
endif()
if(WIN32)
    target_sources(kiv_c PRIVATE ${kiv_def})
    kiv_version_resource(kiv_c kiv.dll)
    set_target_properties(kiv_c PROPERTIES PREFIX "")
    # The import library for Visual C++ and all that links as it does.
    find_program(KIV_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 llvm-dlltool-19)
    if(KIV_LLVM_DLLTOOL)
        set(kiv_lib ${PROJECT_BINARY_DIR}/kiv.lib)
        add_custom_command(OUTPUT ${kiv_lib}
            COMMAND ${KIV_LLVM_DLLTOOL} -m i386:x86-64 -d ${kiv_def} -l ${kiv_lib} DEPENDS ${kiv_def} VERBATIM)
        add_custom_target(kiv_msvc_import ALL DEPENDS ${kiv_lib})
    else()
        message(STATUS "No llvm-dlltool: kiv.lib, the import library for Visual C++, is not made")
    endif()
else()
    set(kiv_exports ${PROJECT_SOURCE_DIR}/src/c/exports.map)
    target_link_options(kiv_c PRIVATE -Wl,--version-script=${kiv_exports})
    set_target_properties(kiv_c PROPERTIES LINK_DEPENDS ${kiv_exports})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT KIV_SANITIZE)
        # Its run-time library is inside, so that it meets none of the host's. The unwinder below that is the
        # system's: the compiler's own would ask for a C library as young as the compiler.
        target_link_options(kiv_c PRIVATE -static-libstdc++ -Wl,-z,defs)
        if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|aarch64)$")
            target_sources(kiv_c PRIVATE src/support/platform/OlderHypot.cpp)
            target_link_options(kiv_c PRIVATE -Wl,--wrap=hypot)
        endif()
    endif()
endif()
