# SPDX-License-Identifier: MIT
# Installs the licences of linked parts, makes the linker write the maps from which the software bill
# of materials is made, and configures CPack: "cpack --config CPackConfig.cmake" in the build folder
# makes the packages of this build's system. docs/releasing.md describes them.

# Only packaging needs Python; it reports when it is missing.
find_package(Python3 3.11 COMPONENTS Interpreter)
set(packaging_python "")
if(Python3_FOUND)
    set(packaging_python ${Python3_EXECUTABLE})
endif()

# ---- licences -----------------------------------------------------------------------------------
# The licences of Debian packages are in /usr/share/doc, which some machines leave out. They refer to
# long licences in /usr/share/common-licenses, so these are installed with them.
set(licences_dir ${CMAKE_INSTALL_DOCDIR}/licences)

function(rgen_install_licence component name package text)
    if(EXISTS ${text})
        install(FILES ${text} DESTINATION ${licences_dir} RENAME ${name} COMPONENT ${component})
    else()
        install(CODE "message(FATAL_ERROR \"The licence ${text} is missing, so it cannot be \
installed. Install the package ${package} with its documentation (see path-exclude in \
/etc/dpkg/dpkg.cfg.d).\")"
                COMPONENT ${component})
    endif()
endfunction()

function(rgen_install_copyright component name package)
    rgen_install_licence(${component} ${name} ${package} /usr/share/doc/${package}/copyright)
endfunction()

function(rgen_install_common_licence name)
    rgen_install_licence(library ${name}.txt base-files /usr/share/common-licenses/${name})
endfunction()

install(DIRECTORY ${rgen_third_party}/licences/ DESTINATION ${licences_dir} COMPONENT library)
rgen_install_common_licence(GPL-3)
if(WIN32)
    rgen_install_copyright(library gcc-runtime.txt gcc-mingw-w64-x86-64-posix)
    rgen_install_copyright(library mingw-w64.txt mingw-w64-x86-64-dev)
else()
    rgen_install_copyright(library gcc-runtime.txt libgcc-12-dev)
    rgen_install_copyright(library c-library.txt libc6-dev)
    rgen_install_common_licence(LGPL-2.1)
endif()
if(RGEN_BUILD_TOOLS)
    rgen_install_copyright(tools cli11.txt libcli11-dev)
    rgen_install_copyright(tools nlohmann-json.txt nlohmann-json3-dev)
endif()

# ---- linker maps --------------------------------------------------------------------------------
set(maps_dir ${PROJECT_BINARY_DIR}/maps)
file(MAKE_DIRECTORY ${maps_dir})
foreach(target strata_repgenlib rgen vellum)
    if(TARGET ${target})
        target_link_options(${target} PRIVATE LINKER:-Map=${maps_dir}/${target}.map)
    endif()
endforeach()

# ---- CPack --------------------------------------------------------------------------------------
# CPack installs the tree; packaging/make_packages.py strips its binaries and makes the packages.
# docs/building.md says why CPack's own generators are not used.
set(package_system linux)
if(WIN32)
    set(package_system windows)
endif()
configure_file(packaging/make_packages.cmake.in ${PROJECT_BINARY_DIR}/make_packages.cmake @ONLY)
set(CPACK_GENERATOR External)
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT ${PROJECT_BINARY_DIR}/make_packages.cmake)
set(CPACK_PACKAGE_NAME strata_repgenlib)
set(CPACK_PACKAGE_VENDOR "strata_repgenlib maintainers")
set(CPACK_PACKAGE_FILE_NAME strata_repgenlib-${PROJECT_VERSION}-${package_system}-x64)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_MONOLITHIC_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX "")
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
