# Options that every target of the project is compiled with. Contraction off: the same input gives the
# same bits on every build of one toolchain. g++ 12's vectorizing of neighbouring statements leaves out
# the rounding of a double to single precision that is widened again at once (OrientationAngles.cpp).
function(kiv_compile_options target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /fp:precise)
        if(KIV_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE /WX)
        endif()
    else()
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -ffp-contract=off)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            target_compile_options(${target} PRIVATE -fno-tree-slp-vectorize)
        endif()
        if(KIV_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE -Werror)
        endif()
    endif()
endfunction()
