# SPDX-License-Identifier: MIT
# Changes the links of installed documents to the paths of the installation. documents: the folder
# of the pages; to_include, to_bindings: the relative paths from there, without a "/" at the end.

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
