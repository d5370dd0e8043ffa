# Opens a report in headless Chromium: no message on the console, every chart drawn, in light, in dark, on a
# narrow screen and in print, bands where they belong, nothing of a hostile file name run.
#   cmake -DTOOL=... -DEXAMPLES=... -DSCRIPTS=... -DWORK=... -P check_in_browser.cmake
find_program(CHROMIUM NAMES chromium chromium-browser)
if(NOT CHROMIUM)
    message("skipped: chromium is not installed")
    return()
endif()
file(REMOVE_RECURSE ${WORK})

# What the page holds after its scripts have run, and what was written to the console. Behind them: options of
# the browser in place of a wide window.
function(open_page page dom console)
    set(options ${ARGN})
    if(NOT options)
        set(options --window-size=1200,2600)
    endif()
    execute_process(
        COMMAND ${CHROMIUM} --headless --no-sandbox --disable-gpu --disable-quic --no-first-run
            --disable-background-networking --disable-component-update --disable-sync
            --user-data-dir=${WORK}/profile --enable-logging=stderr ${options}
            --screenshot=${WORK}/page.png --dump-dom file://${page}
        TIMEOUT 120
        OUTPUT_VARIABLE content
        ERROR_VARIABLE messages
        RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "expected Chromium to open ${page}, found ${result}:\n${messages}")
    endif()
    string(REGEX MATCHALL "[^\n]*CONSOLE[^\n]*" lines "${messages}")
    # dygraphs 2.2 tells there what a zoom leaves out.
    list(FILTER lines EXCLUDE REGEX "points out of X bounds")
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
    "101,2,4000,1500,0,12.5,3,1,-2,20,0.1,0,0,0,0\n"
    "102,2,4000,1500,450,12.5,3,1,9.5,20,0.1,0,0,0,0\n")
foreach(time RANGE 103 142) # refused one after the other: one stretch of the strip
    file(APPEND "${readings}" "${time},2,0,0,0,12.5,3,1,-2,20,0.1,0,0,0,0\n")
endforeach()
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=1700000000 ${TOOL} report ${EXAMPLES}/Tg5.prm ${readings} -q
        --u-vector 50 --u-encoder 2 --u-level 2 -o ${WORK}/page.html
    RESULT_VARIABLE result ERROR_VARIABLE messages)
if(NOT result EQUAL 1)
    message(FATAL_ERROR "expected exit code 1 for readings with bad rows, found ${result}: ${messages}")
endif()
open_page(${WORK}/page.html dom console)
if(console)
    message(FATAL_ERROR "expected nothing on the console, found: ${console}")
endif()
file(SIZE ${WORK}/page.png size)
if(size LESS 50000)
    message(FATAL_ERROR "expected a picture of a whole page, found ${size} bytes in ${WORK}/page.png")
endif()

foreach(chart angles uncertainties tilts encoders residuals distance temperature metric)
    # dygraphs sets two canvases into the chart's element; the page counts the points that were drawn.
    string(REGEX MATCH "<figure id=\"${chart}\">.*" figure "${dom}")
    string(FIND "${figure}" "</figure>" end)
    string(SUBSTRING "${figure}" 0 ${end} figure)
    if(NOT figure MATCHES "data-drawn=\"2262\".*<canvas.*<canvas")
        message(FATAL_ERROR "expected the chart ${chart} with 2262 points drawn, found: ${figure}")
    endif()
endforeach()
if(NOT dom MATCHES "a&lt;/script&gt;&lt;script&gt;document.body.remove\\(\\)&lt;/b.csv</code>")
    message(FATAL_ERROR "expected the name of the readings as text, found: ${dom}")
endif()
if(NOT dom MATCHES "Run at</th><td class=\"text\">2023-11-14T22:13:20Z<")
    message(FATAL_ERROR "expected the time that SOURCE_DATE_EPOCH sets, found: ${dom}")
endif()

# A copy with the probe behind it.
function(expect_seen print expected)
    file(READ ${WORK}/page.html page)
    file(READ ${CMAKE_CURRENT_LIST_DIR}/probe.html probe)
    string(REPLACE "PRINT" ${print} probe "${probe}")
    # Else the browser would not run the probe, as the page lets its own scripts run alone.
    string(REGEX REPLACE "script-src [^;]*;" "script-src 'unsafe-inline';" page "${page}")
    file(WRITE ${WORK}/probed.html "${page}${probe}")
    open_page(${WORK}/probed.html dom console ${ARGN})
    if(NOT dom MATCHES "${expected}</pre>" OR console)
        string(REGEX MATCH "paper [^<]*</pre>" found "${dom}")
        message(FATAL_ERROR "expected ${expected} with ${ARGN}, found: ${found} ${console}")
    endif()
endfunction()
string(CONCAT drawn "wider by 0; lines 9; strips 9,9; stretches 1,1; cursor true; 1 view of 50 %; saved first_row,last_row,[^;]*"
    "true true; 1 view of 100 %, cursor -1; #rows=9001-9001 in row 9001; ticks 9; named true; bands angles,residuals")
expect_seen(false "paper rgb\\(255, 255, 255\\); ${drawn}" --window-size=1200,900)
expect_seen(false "paper rgb\\(20, 25, 31\\); ${drawn}" --window-size=400,900 --blink-settings=preferredColorScheme=0)
expect_seen(true "paper rgb\\(255, 255, 255\\); ${drawn}" --window-size=1200,900 --blink-settings=preferredColorScheme=0)

# The lines of charts: where they lead across the seam, a row breaks them and their bands, and no other series.
file(READ ${SCRIPTS}/rows.js rows)
file(READ ${SCRIPTS}/bands.js bands)
file(READ ${CMAKE_CURRENT_LIST_DIR}/seam.html seam)
string(REPLACE "ROWS" "${rows}" seam "${seam}")
string(REPLACE "BANDS" "${bands}" seam "${seam}")
file(WRITE ${WORK}/seam.html "${seam}")
open_page(${WORK}/seam.html dom console)
string(CONCAT expected "found 1.5:170,1 3.5:178,2 5.5:179,3 5.5:-,3 5.5:-179,3 7.5:-175,4 9.5:-,5 11.5:179,6 13.5:-,7 "
    "13.5:-179,7 15.5:-178,208 | 0,1,2,2,2,3,4,5,6,6,7 | 0,1,2,5,6,7,9,10 | 1.5/167/173 3.5/173/183 5.5/174/184 | "
    "5.5/-184/-174 7.5/-180/-170 | 10.5/176/182 12.5/176/182 | 14.5/-181/-175 16.5/-181/-175<")
string(FIND "${dom}" "${expected}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "expected ${expected}\nfound: ${dom} ${console}")
endif()

# The pages of the other subcommands, made of the same kit.
set(weights --u-vector 0.05 --u-encoder 0.001 --u-level 0.002)
file(MAKE_DIRECTORY ${WORK}/new)
execute_process(
    COMMAND ${TOOL} calibrate ${EXAMPLES}/Tg5.prm ${EXAMPLES}/known-poses.csv -o ${WORK}/new/Tg5.prm ${weights}
        --report ${WORK}/calibrate.html
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND ${TOOL} compare --parameters ${EXAMPLES}/Tg5.prm ${WORK}/new/Tg5.prm ${EXAMPLES}/known-poses.csv
        --report ${WORK}/compare.html
    OUTPUT_QUIET ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND ${TOOL} poses ${WORK}/new/Tg5.prm ${EXAMPLES}/stations.csv --by placement ${weights}
        --report ${WORK}/poses.html
    OUTPUT_QUIET ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
foreach(page calibrate:19:angle_<wbr>offset.<wbr>azimuth_<wbr>deg</code> compare:2:rx poses:4:rx)
    string(REGEX MATCH "(.*):(.*):(.*)" page ${page})
    set(figures ${CMAKE_MATCH_2})
    set(content ${CMAKE_MATCH_3})
    set(page ${CMAKE_MATCH_1})
    open_page(${WORK}/${page}.html dom console --window-size=400,900)
    string(REGEX MATCHALL "data-drawn=\"[1-9][0-9]*\"" drawn "${dom}")
    list(LENGTH drawn count)
    string(FIND "${dom}" "${content}" place)
    if(console OR NOT count EQUAL figures OR place EQUAL -1)
        message(FATAL_ERROR "expected ${figures} charts and ${content} on the page of ${page}, found ${count}: ${console}")
    endif()
endforeach()
file(REMOVE_RECURSE ${WORK}/profile)
