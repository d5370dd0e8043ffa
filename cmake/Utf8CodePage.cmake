# Programs whose arguments and paths are UTF-8 on Windows too (10 of 2019 and later), as they are elsewhere.
function(kiv_utf8_code_page target)
    if(WIN32)
        set(manifest ${PROJECT_SOURCE_DIR}/cmake/utf8-code-page.manifest)
        set(resource ${CMAKE_CURRENT_BINARY_DIR}/utf8-code-page.rc)
        file(CONFIGURE OUTPUT ${resource} CONTENT "1 24 \"${manifest}\"\n")
        target_sources(${target} PRIVATE ${resource})
    endif()
endfunction()
