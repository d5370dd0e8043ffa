# Puts the charts' library, the report's own style and scripts, and the reference cases into the tool.
find_path(KIV_DYGRAPHS_DIR dygraph.min.js PATHS /usr/share/javascript/dygraphs
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_file(KIV_DYGRAPHS_LICENCE copyright PATHS /usr/share/doc/libjs-dygraphs
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)

function(kiv_embed function)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/embedded/${function}.cpp)
    set(script ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake)
    add_custom_command(OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} "-DFILES=${ARGN}" -DFUNCTION=${function} -DOUTPUT=${output} -P ${script}
        DEPENDS ${ARGN} ${script}
        VERBATIM)
    target_sources(kiv_host PRIVATE ${output})
endfunction()
kiv_embed(dygraphsScript ${KIV_DYGRAPHS_DIR}/dygraph.min.js)
kiv_embed(dygraphsStyle ${KIV_DYGRAPHS_DIR}/dygraph.min.css)
kiv_embed(dygraphsLicence ${KIV_DYGRAPHS_LICENCE})
set(scripts rows ticks bands marks controls save page)
list(TRANSFORM scripts PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/report/)
list(TRANSFORM scripts APPEND .js)
kiv_embed(pageScript ${scripts})
kiv_embed(pageStyle ${CMAKE_CURRENT_SOURCE_DIR}/report/page.css)
kiv_embed(verifyParameters ${CMAKE_CURRENT_SOURCE_DIR}/verify/Tg5.prm)
kiv_embed(verifyCases ${CMAKE_CURRENT_SOURCE_DIR}/verify/cases.csv)
