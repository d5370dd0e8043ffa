# Runs the example host and compares its second line with kiv's result for the same reading. The host links
# the shared library, the tool has the sources built in.
#   cmake -DRUN=[wine] -DHOST=... -DTOOL=... -DEXAMPLES=... -DREADME=... -P check_minimal_host.cmake
execute_process(COMMAND ${RUN} ${HOST} ${EXAMPLES} OUTPUT_VARIABLE host COMMAND_ERROR_IS_FATAL ANY)

set(columns time,status,x,y,z,azimuth_deg,elevation_deg,level_x,level_y,temperature,ref_metric,ref_blocked)
file(WRITE minimal_host_readings.csv "${columns}\n"
    "1,2,4000,1500,450,12.5,3,1,-2,20,0.1,0\n2,2,4000,1500,450,27.5,3,1,-2,20,0.1,0\n")
execute_process(COMMAND ${RUN} ${TOOL} run ${EXAMPLES}/Tg5.prm minimal_host_readings.csv
    OUTPUT_VARIABLE tool ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCHALL "[^\n]+" host_lines "${host}")
string(REGEX MATCHALL "[^\n]+" tool_lines "${tool}")
list(LENGTH host_lines host_count)
if(NOT host_count EQUAL 2)
    message(FATAL_ERROR "expected two lines of angles, found:\n${host}")
endif()
list(GET host_lines 0 reference)
if(NOT reference STREQUAL "rx 0.0000  ry 0.0000  rz 0.0000 degrees")
    message(FATAL_ERROR "expected zero angles with the reference, found: ${reference}")
endif()

# The host prints four decimals of the number that the tool gives in full.
list(GET host_lines 1 angles)
list(GET tool_lines 2 row)
string(REPLACE "," ";" cells "${row}")
set(at 6) # rx, ry, rz follow one another
foreach(axis rx ry rz)
    string(REGEX MATCH "${axis} (-?[0-9]+[.][0-9][0-9][0-9])" ignored "${angles}")
    set(printed ${CMAKE_MATCH_1})
    list(GET cells ${at} full)
    math(EXPR at "${at} + 1")
    string(LENGTH "${printed}" length)
    string(SUBSTRING "${full}" 0 ${length} start)
    if(NOT printed STREQUAL start)
        message(FATAL_ERROR "expected ${axis} ${full} as the tool has it, found: ${angles}")
    endif()
endforeach()

file(READ ${EXAMPLES}/minimal_host.cpp source)
file(READ ${README} readme)
string(FIND "${readme}" "${source}" found)
if(found EQUAL -1)
    message(FATAL_ERROR "expected examples/minimal_host.cpp word for word in README.md, found another text")
endif()
