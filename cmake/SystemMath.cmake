# Sine, cosine and the arc tangent of two arguments from the system's runtime, where arcsine, arccosine, arc
# tangent and tangent come from already: the toolchain's own go through the x87 unit and take four times as
# long. With built-in functions the compiler would make one call of a sine and a cosine, which that runtime
# does not have.
set(kiv_system_math ${PROJECT_BINARY_DIR}/libkiv_system_math.a)
set(kiv_system_math_names ${PROJECT_SOURCE_DIR}/cmake/system-math.def)
add_custom_command(OUTPUT ${kiv_system_math}
    # By its name alone: the library's symbols are called after it, and a folder would be in the binaries.
    COMMAND ${CMAKE_DLLTOOL} -d ${kiv_system_math_names} -l libkiv_system_math.a
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
    DEPENDS ${kiv_system_math_names} VERBATIM)
add_custom_target(kiv_system_math DEPENDS ${kiv_system_math})
add_dependencies(kiv_core kiv_system_math)
target_link_libraries(kiv_core PUBLIC ${kiv_system_math})
