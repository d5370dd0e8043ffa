# Options that every target of the project is compiled with. Contraction off: the same input gives the
# same bits on every build of one toolchain. Nothing reads the errno of a mathematical function. g++ 12's
# vectorizing of neighbouring statements leaves out the rounding of a double to single precision that is
# widened again at once (OrientationAngles.cpp).
function(kiv_compile_options target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Werror=switch
        -ffp-contract=off -fno-math-errno)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -fno-tree-slp-vectorize)
    endif()
    if(MINGW)
        target_compile_options(${target} PRIVATE -fno-builtin-sin -fno-builtin-cos)
    else()
        # What a library cannot reach is not in it.
        target_compile_options(${target} PRIVATE -ffunction-sections -fdata-sections)
        target_link_options(${target} PRIVATE -Wl,--gc-sections)
    endif()
    kiv_harden(${target})
endfunction()

if(KIV_SANITIZE)
    list(JOIN KIV_SANITIZE "," sanitizers)
    add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${sanitizers})
endif()

# Checked buffers, stack and jump targets, and addresses that are read-only once bound. The checks of
# buffers need optimisation and hide from the sanitizers what those would find: release builds alone.
include(CheckCXXCompilerFlag)
if(NOT WIN32)
    check_cxx_compiler_flag(-fcf-protection=full KIV_HAS_CF_PROTECTION)
endif()
function(kiv_harden target)
    if(WIN32)
        target_link_options(${target} PRIVATE -Wl,--dynamicbase,--high-entropy-va,--nxcompat)
        return()
    endif()
    target_compile_options(${target} PRIVATE
        -fstack-protector-strong
        $<$<BOOL:${KIV_HAS_CF_PROTECTION}>:-fcf-protection=full>
        $<$<CONFIG:Release>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3>)
    target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now,-z,noexecstack)
endfunction()
