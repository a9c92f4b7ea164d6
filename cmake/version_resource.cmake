# SPDX-License-Identifier: MIT
# Version resources of Windows binaries, and the manifest of programs.

enable_language(RC)

# rgen_add_version_resource(TARGET DESCRIPTION)
function(rgen_add_version_resource target description)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
        set(file_type VFT_APP)
        set(file_name ${target}.exe)
        set(manifest ${PROJECT_SOURCE_DIR}/cmake/program.manifest)
        set(manifest_line "1 24 \"${manifest}\"\n")
    else()
        set(file_type VFT_DLL)
        set(file_name ${target}.dll)
    endif()
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
    target_sources(${target} PRIVATE ${resource})
    set_property(SOURCE ${resource} PROPERTY OBJECT_DEPENDS ${manifest})
endfunction()
