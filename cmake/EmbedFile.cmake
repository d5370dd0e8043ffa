# Turns text files, one behind the other, into a C++ source with a function that gives their bytes.
#   cmake -DFILES=... -DFUNCTION=... -DOUTPUT=... -P EmbedFile.cmake
# An array of numbers, as some compilers take no string literal beyond 64 kB. The reference to a source map
# goes, as there is no map beside the page.
set(text "")
foreach(file ${FILES})
    file(READ ${file} part)
    string(APPEND text "${part}")
endforeach()
string(REPLACE "\r" "" text "${text}")
string(REGEX REPLACE "//# sourceMappingURL=[^\n]*|/[*]# sourceMappingURL=[^\n]*[*]/" "" text "${text}")
string(TOLOWER "${text}" lower)
if(lower MATCHES "</(script|style)|<!--")
    message(FATAL_ERROR "${FILES}: expected text that can stand in a script or style element, found ${CMAKE_MATCH_0}")
endif()
string(HEX "${text}" digits)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," numbers "${digits}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n"
    numbers "${numbers}")
file(WRITE ${OUTPUT} "#include \"host/base/Embedded.h\"

namespace kiv::host::embedded {
std::string_view ${FUNCTION}() {
    static const unsigned char bytes[] = {
${numbers}};
    return {reinterpret_cast<const char*>(bytes), sizeof bytes};
}
} // namespace kiv::host::embedded
")
