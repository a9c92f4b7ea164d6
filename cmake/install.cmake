# SPDX-License-Identifier: MIT
# Installation rules, in the components library, development, tools, templates and documentation. No
# installed file contains a path of the building machine, so the tree can be moved.

include(CMakePackageConfigHelpers)

foreach(folder BINDIR LIBDIR INCLUDEDIR DATAROOTDIR DOCDIR MANDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
        message(FATAL_ERROR "CMAKE_INSTALL_${folder} is ${CMAKE_INSTALL_${folder}}, but has to be "
                            "relative to the prefix: an installation can be moved. Set "
                            "CMAKE_INSTALL_PREFIX instead.")
    endif()
endforeach()
set(install_data_dir ${CMAKE_INSTALL_DATAROOTDIR}/strata_repgenlib)
set(install_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/strata_repgenlib)

# ---- required files -----------------------------------------------------------------------------
# These rules come first, so that an installation that cannot be complete fails before it copies
# anything. Programs that are not built are left out.

# rgen_check_before_install(COMPONENT SCRIPT CODE): runs a script of this folder with the variables that
# the code sets.
function(rgen_check_before_install component script code)
    install(CODE "${code}\nset(build_folder \"${PROJECT_BINARY_DIR}\")" COMPONENT ${component})
    install(SCRIPT ${PROJECT_SOURCE_DIR}/cmake/${script} COMPONENT ${component})
endfunction()

function(rgen_require_for_install component)
    rgen_check_before_install(${component} require_built_files.cmake "set(required \"${ARGN}\")")
endfunction()

set(libraries strata_repgenlib strata_repgenlib_host)
list(TRANSFORM libraries REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE library_files)
list(TRANSFORM libraries REPLACE "(.+)" "$<TARGET_LINKER_FILE:\\1>" OUTPUT_VARIABLE linker_files)
rgen_require_for_install(library ${library_files})
if(WIN32)
    include(cmake/import_library.cmake)
    rgen_require_for_install(development ${linker_files} ${import_libraries})
else()
    rgen_require_for_install(development ${linker_files})
endif()
if(RGEN_BUILD_TOOLS)
    include(cmake/completion.cmake)
    rgen_check_before_install(
        tools require_built_programs.cmake
        "set(programs \"$<TARGET_FILE:rgen>\" \"$<TARGET_FILE:vellum>\")
set(completion \"${completion_files}\")")
endif()

# rgen_install_with(TARGET FILE... DESTINATION <dir> [RENAME <name>]): installs files with a program,
# if that and the files are built.
function(rgen_install_with target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESTINATION;RENAME" "")
    set(files "")
    foreach(file IN LISTS arg_UNPARSED_ARGUMENTS)
        string(APPEND files " \"${file}\"")
    endforeach()
    set(rename "")
    if(arg_RENAME)
        set(rename "RENAME ${arg_RENAME}")
    endif()
    install(CODE "if(EXISTS \"$<TARGET_FILE:${target}>\")
    file(INSTALL DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${arg_DESTINATION}\" TYPE FILE OPTIONAL
         ${rename} FILES${files})
endif()"
            COMPONENT tools)
endfunction()

if(NOT RGEN_SANITIZER AND NOT RGEN_COVERAGE)
    include(cmake/licences.cmake)
endif()

# ---- library ------------------------------------------------------------------------------------

install(
    TARGETS ${libraries}
    EXPORT strata_repgenlibTargets
    RUNTIME COMPONENT library
    LIBRARY COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT library)

# ---- development --------------------------------------------------------------------------------

install(DIRECTORY include/strata_repgenlib DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT development)
if(WIN32)
    # The list is empty if the build could not make them; then the installation fails above.
    install(FILES ${import_libraries} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    install(FILES src/api/exports.def DESTINATION ${CMAKE_INSTALL_LIBDIR}
            RENAME strata_repgenlib.def COMPONENT development)
    install(FILES host/api/exports.def DESTINATION ${CMAKE_INSTALL_LIBDIR}
            RENAME strata_repgenlib_host.def COMPONENT development)
endif()

# The major number changes with every incompatible change, as docs/abi.md says.
set(package_files ${PROJECT_BINARY_DIR}/package)
write_basic_package_version_file(${package_files}/strata_repgenlibConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
file(RELATIVE_PATH install_package_to_prefix /${install_package_dir} /)
configure_package_config_file(
    cmake/package/strata_repgenlibConfig.cmake.in ${package_files}/strata_repgenlibConfig.cmake
    INSTALL_DESTINATION ${install_package_dir}
    PATH_VARS CMAKE_INSTALL_LIBDIR install_data_dir)
install(FILES ${package_files}/strata_repgenlibConfig.cmake
              ${package_files}/strata_repgenlibConfigVersion.cmake
        DESTINATION ${install_package_dir} COMPONENT development)
install(EXPORT strata_repgenlibTargets NAMESPACE strata_repgenlib::
        DESTINATION ${install_package_dir} COMPONENT development)

file(RELATIVE_PATH install_pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" install_pc_to_prefix "${install_pc_to_prefix}")
foreach(library IN LISTS libraries)
    configure_file(cmake/package/${library}.pc.in ${package_files}/${library}.pc @ONLY)
    install(FILES ${package_files}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
            COMPONENT development)
endforeach()

# Sources for hosts, without tests and build products.
set(left_out
    PATTERN tests EXCLUDE PATTERN "*_test.*" EXCLUDE PATTERN "test_*.py" EXCLUDE
    PATTERN __pycache__ EXCLUDE PATTERN "*.egg-info" EXCLUDE PATTERN ".*" EXCLUDE
    REGEX "/python/(build|dist)$" EXCLUDE REGEX "/csharp/(.+/)?(bin|obj)$" EXCLUDE
    REGEX "/rust/(target|Cargo\\.lock)$" EXCLUDE REGEX "/examples/build$" EXCLUDE)
foreach(language python csharp rust)
    install(DIRECTORY bindings/${language} DESTINATION ${install_data_dir}/bindings
            COMPONENT development OPTIONAL ${left_out})
endforeach()
install(DIRECTORY examples DESTINATION ${install_data_dir} COMPONENT development ${left_out})

# ---- tools --------------------------------------------------------------------------------------

if(RGEN_BUILD_TOOLS)
    install(TARGETS rgen vellum RUNTIME COMPONENT tools OPTIONAL)
endif()
if(RGEN_BUILD_TOOLS AND NOT WIN32)
    foreach(program rgen vellum)
        rgen_install_with(${program} ${PROJECT_BINARY_DIR}/tools/${program}/${program}.1
                          DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    endforeach()
endif()
if(RGEN_BUILD_TOOLS AND completion_files)
    rgen_install_with(rgen ${completion_dir}/rgen
                      DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions)
    rgen_install_with(rgen ${completion_dir}/_rgen
                      DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/site-functions)
endif()

# ---- templates and documentation ----------------------------------------------------------------

install(DIRECTORY templates DESTINATION ${install_data_dir} COMPONENT templates)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT documentation)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation
        FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
# Adapts links to headers and bindings, whose paths differ from those in the sources.
foreach(folder docs .)
    file(RELATIVE_PATH include /${CMAKE_INSTALL_DOCDIR}/${folder} /${CMAKE_INSTALL_INCLUDEDIR})
    file(RELATIVE_PATH bindings /${CMAKE_INSTALL_DOCDIR}/${folder} /${install_data_dir}/bindings)
    set(documents "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DOCDIR}/${folder}")
    install(CODE "set(documents \"${documents}\")
set(to_include \"${include}\")
set(to_bindings \"${bindings}\")"
            COMPONENT documentation)
    install(SCRIPT cmake/installed_links.cmake COMPONENT documentation)
endforeach()
