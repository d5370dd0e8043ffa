# Run by CPack in each staged package: man pages are compressed, changes and copyright are put where Debian has them.
foreach(component classes c development tool python)
    string(TOUPPER ${component} upper)
    set(usr ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
    set(documents ${usr}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(copyright "This is ${CPACK_DEBIAN_${upper}_PACKAGE_NAME} ${CPACK_PACKAGE_VERSION}, packaged by its own project.\n
Copyright: the owner of KIVInterface.\n\nLicence: the owner has chosen none yet; its place is LICENCE.md.\n")
    if(component MATCHES "^(tool|c)$")
        file(STRINGS ${CPACK_KIV_SOURCE_DIR}/cmake/inside.txt inside REGEX "^[^#]")
        foreach(row IN LISTS inside)
            list(TRANSFORM row STRIP)
            list(GET row 0 name)
            list(GET row 1 package)
            list(GET row 3 place)
            if((component STREQUAL "tool" AND place STREQUAL "tool") OR (component STREQUAL "c" AND place STREQUAL "libkiv"))
                file(READ /usr/share/doc/${package}/copyright text)
                string(APPEND copyright "\n\nCompiled in: ${name}\n\n${text}")
            endif()
        endforeach()
    endif()
    file(WRITE ${documents}/copyright "${copyright}")
    file(COPY ${CPACK_KIV_SOURCE_DIR}/CHANGELOG.md DESTINATION ${documents})
    file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
    set(maker "${CPACK_PACKAGE_CONTACT}")
    string(TIMESTAMP moment "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH, where it is set
    file(WRITE ${documents}/changelog.Debian
        "kivinterface (${CPACK_PACKAGE_VERSION}-1) unstable; urgency=medium\n\n  * As changelog.gz says.\n\n -- ${maker}  ${moment}\n")
    if(EXISTS ${usr}/share/zsh/site-functions) # where Debian's zsh looks
        file(RENAME ${usr}/share/zsh/site-functions ${usr}/share/zsh/vendor-completions)
    endif()
    file(GLOB pages ${usr}/share/man/man*/*.[1-9])
    execute_process(COMMAND gzip -9n ${documents}/changelog ${documents}/changelog.Debian ${pages}
        COMMAND_ERROR_IS_FATAL ANY)
endforeach()
