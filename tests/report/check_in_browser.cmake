# Opens a report in headless Chromium: no message on the console, every chart drawn, nothing of a hostile
# file name run.
#   cmake -DTOOL=... -DEXAMPLES=... -DWORK=... -P check_in_browser.cmake
find_program(CHROMIUM NAMES chromium chromium-browser)
if(NOT CHROMIUM)
    message("skipped: chromium is not installed")
    return()
endif()
file(REMOVE_RECURSE ${WORK})

# What the page holds after its scripts have run, and what was written to the console.
function(open_page page dom console)
    execute_process(
        COMMAND ${CHROMIUM} --headless --no-sandbox --disable-gpu --disable-quic --no-first-run
            --disable-background-networking --disable-component-update --disable-sync
            --user-data-dir=${WORK}/profile --enable-logging=stderr --window-size=1200,2600
            --screenshot=${WORK}/page.png --dump-dom file://${page}
        TIMEOUT 120
        OUTPUT_VARIABLE content
        ERROR_VARIABLE messages
        RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "expected Chromium to open ${page}, found ${result}:\n${messages}")
    endif()
    string(REGEX MATCHALL "[^\n]*CONSOLE[^\n]*" lines "${messages}")
    set(${dom} "${content}" PARENT_SCOPE)
    set(${console} "${lines}" PARENT_SCOPE)
endfunction()

# Without this, a browser that keeps its messages to itself would pass everything.
file(WRITE ${WORK}/faulty.html "<!DOCTYPE html><script>nothing.there</script>")
open_page(${WORK}/faulty.html dom console)
if(NOT console MATCHES "nothing is not defined")
    message(FATAL_ERROR "expected a script error on Chromium's console, found: ${console}")
endif()

# The path reads .../a</script><script>document.body.remove()</b.csv in the page.
set(folder "${WORK}/a<")
set(readings "${folder}/script><script>document.body.remove()</b.csv")
cmake_path(GET readings PARENT_PATH folder)
file(MAKE_DIRECTORY "${folder}")
execute_process(COMMAND ${TOOL} simulate ${EXAMPLES}/Tg5.prm --rows 9000 -o ${readings} COMMAND_ERROR_IS_FATAL ANY)
file(APPEND "${readings}" "</script><script>document.body.remove()</script>\n"
    "100,2,4000,<img src=x onerror=document.body.remove()>,450,12.5,3,1,-2,20,0.1,0,0,0,0\n"
    "101,2,4000,1500,0,12.5,3,1,-2,20,0.1,0,0,0,0\n")
execute_process(COMMAND ${TOOL} report ${EXAMPLES}/Tg5.prm ${readings} -q -o ${WORK}/page.html
    RESULT_VARIABLE result ERROR_VARIABLE messages)
if(NOT result EQUAL 1)
    message(FATAL_ERROR "expected exit code 1 for readings with bad rows, found ${result}: ${messages}")
endif()
open_page(${WORK}/page.html dom console)
if(console)
    message(FATAL_ERROR "expected nothing on the console, found: ${console}")
endif()

foreach(chart angles tilts encoders residuals)
    # dygraphs sets two canvases into the chart's element; the page counts the points that were drawn.
    string(REGEX MATCH "<figure id=\"${chart}\">.*" figure "${dom}")
    string(FIND "${figure}" "</figure>" end)
    string(SUBSTRING "${figure}" 0 ${end} figure)
    if(NOT figure MATCHES "data-drawn=\"2251\".*<canvas.*<canvas")
        message(FATAL_ERROR "expected the chart ${chart} with 2251 points drawn, found: ${figure}")
    endif()
endforeach()
if(NOT dom MATCHES "a&lt;/script&gt;&lt;script&gt;document.body.remove\\(\\)&lt;/b.csv</code>")
    message(FATAL_ERROR "expected the name of the readings as text, found: ${dom}")
endif()
file(REMOVE_RECURSE ${WORK}/profile)
file(SIZE ${WORK}/page.png size)
if(size LESS 50000)
    message(FATAL_ERROR "expected a picture of a whole page, found ${size} bytes in ${WORK}/page.png")
endif()
