# A tool with a changed digit in each model says so of each.
execute_process(COMMAND ${RUN} ${TOOL} verify OUTPUT_VARIABLE output RESULT_VARIABLE code)
string(REGEX MATCHALL "(dual-level|pendulum|polarizer|three-vector|two-level) +[0-9, ]+ WRONG [^\n]+\n  case [0-9]+: expected"
    wrong "${output}")
list(LENGTH wrong count)
if(NOT code EQUAL 1 OR NOT count EQUAL 5 OR NOT output MATCHES "This installation does not compute what it should")
    message(FATAL_ERROR "expected five models to be wrong and exit code 1, found ${code} and\n${output}")
endif()
