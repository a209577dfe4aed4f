# Puts the sources of the report's page into C++:
# cmake -DFOLDER=tools/report/page -DOUTPUT=FILE.cpp -P embed_page.cmake
# The script's files become one, in the order below. The sums are what the page's own policy knows its parts by.
set(scripts data.js grid.js record.js page.js)

function(read_hex name result)
    file(READ ${FOLDER}/${name} bytes HEX)
    set(${result} ${bytes} PARENT_SCOPE)
endfunction()

# The same bytes as the parts of the page, to sum them up.
set(script_text "")
set(script_hex "")
foreach(name IN LISTS scripts)
    file(READ ${FOLDER}/${name} text)
    string(APPEND script_text "${text}")
    read_hex(${name} bytes)
    string(APPEND script_hex ${bytes})
endforeach()
string(SHA256 script_sum "${script_text}")
file(SHA256 ${FOLDER}/page.css style_sum)
read_hex(page.html html_hex)
read_hex(page.css style_hex)

set(text "// Made from tools/report/page by cmake/embed_page.cmake.\n#include \"tools/report/page_parts.h\"\n\n")
string(APPEND text "namespace tools {\nnamespace {\n\n")
foreach(part html style script)
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${${part}_hex}")
    string(APPEND text "constexpr char k_${part}[] = {\n${bytes}};\n")
endforeach()
string(APPEND text "\n}  // namespace\n\nconst PageParts& page_parts() {\n    static constexpr PageParts kParts{\n")
string(APPEND text "        {k_html, sizeof k_html}, {k_style, sizeof k_style}, \"${style_sum}\",\n")
string(APPEND text "        {k_script, sizeof k_script}, \"${script_sum}\"};\n    return kParts;\n}\n\n")
string(APPEND text "}  // namespace tools\n")
file(WRITE ${OUTPUT} "${text}")
