# Programs whose arguments and paths are UTF-8 on Windows too (10 of 2019 and later), as they are elsewhere,
# and may be longer than 260 characters where the system is set to take such.
function(kiv_windows_program target)
    if(WIN32)
        set(manifest ${PROJECT_SOURCE_DIR}/cmake/windows-program.manifest)
        set(resource ${CMAKE_CURRENT_BINARY_DIR}/windows-program.rc)
        file(CONFIGURE OUTPUT ${resource} CONTENT "1 24 \"${manifest}\"\n")
        target_sources(${target} PRIVATE ${resource})
    endif()
endfunction()
