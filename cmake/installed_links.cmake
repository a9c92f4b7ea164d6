# SPDX-License-Identifier: MIT
# Turns the links of installed documents, which are those of the sources, into those of the
# installation. documents: the folder of the pages; to_include, to_bindings: the ways from there,
# without a last "/".

file(GLOB pages ${documents}/*.md)
foreach(page IN LISTS pages)
    file(READ ${page} text)
    set(changed "${text}")
    foreach(up "" "../")
        string(REPLACE "](${up}include/" "](${to_include}/" changed "${changed}")
        string(REPLACE "](${up}bindings/" "](${to_bindings}/" changed "${changed}")
    endforeach()
    if(NOT changed STREQUAL text)
        file(WRITE ${page} "${changed}")
    endif()
endforeach()
