# SPDX-License-Identifier: MIT
# Makes the linker write the maps from which the software bill of materials is made, and configures
# CPack: "cpack --config CPackConfig.cmake" in the build folder makes the packages of this build's
# system. docs/releasing.md describes them.

# Only packaging needs Python; it reports when it is missing.
find_package(Python3 3.11 COMPONENTS Interpreter)
set(packaging_python "")
if(Python3_FOUND)
    set(packaging_python ${Python3_EXECUTABLE})
endif()

# ---- linker maps --------------------------------------------------------------------------------
set(maps_dir ${PROJECT_BINARY_DIR}/maps)
file(MAKE_DIRECTORY ${maps_dir})
foreach(target strata_repgenlib strata_repgenlib_host rgen vellum)
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
