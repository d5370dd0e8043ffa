# Options that every target of the project is compiled with. Contraction off: the same input gives the
# same bits on every build of one toolchain.
function(kiv_compile_options target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /fp:precise)
        if(KIV_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE /WX)
        endif()
    else()
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -ffp-contract=off)
        if(KIV_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE -Werror)
        endif()
    endif()
endfunction()
