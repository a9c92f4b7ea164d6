# SPDX-License-Identifier: MIT
# Version notes of Linux libraries.

# rgen_add_version_note(TARGET)
function(rgen_add_version_note target)
    set(note ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.c)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version_note.c.in ${note} @ONLY)
    target_sources(${target} PRIVATE ${note})
endfunction()
