# SPDX-License-Identifier: MIT
# Installs the licences of linked parts. Those of Debian packages are in /usr/share/doc, which some
# machines leave out; an installation without one fails before it copies anything. They refer to long
# licences in /usr/share/common-licenses, so these are installed with them.

set(licences_dir ${CMAKE_INSTALL_DOCDIR}/licences)

# Rows of a file name in the installation and the package whose copyright file it is.
set(library_copyrights gcc-runtime.txt=libgcc-12-dev c-library.txt=libc6-dev)
set(common_licences GPL-3 LGPL-2.1)
if(WIN32)
    set(library_copyrights gcc-runtime.txt=gcc-mingw-w64-x86-64-posix
                           mingw-w64.txt=mingw-w64-x86-64-dev)
    set(common_licences GPL-3)
endif()
set(tools_copyrights "")
if(RGEN_BUILD_TOOLS)
    set(tools_copyrights cli11.txt=libcli11-dev nlohmann-json.txt=nlohmann-json3-dev)
endif()

function(rgen_require_licence component package text)
    if(NOT EXISTS ${text})
        install(CODE "message(FATAL_ERROR \"Nothing was installed, since the licence ${text} is \
missing. Install the package ${package} with its documentation (see path-exclude in \
/etc/dpkg/dpkg.cfg.d), then configure again.\")"
                COMPONENT ${component})
    endif()
endfunction()

# The functions below are called with the file name, the package and the text of each licence.
function(rgen_require_library_licence name package text)
    rgen_require_licence(library ${package} ${text})
endfunction()

function(rgen_require_tools_licence name package text)
    rgen_require_licence(tools ${package} ${text})
endfunction()

function(rgen_install_library_licence name package text)
    install(FILES ${text} DESTINATION ${licences_dir} RENAME ${name} COMPONENT library OPTIONAL)
endfunction()

# The parts of vellum are those of the library.
function(rgen_install_tools_licence name package text)
    rgen_install_with(rgen ${text} DESTINATION ${licences_dir} RENAME ${name})
endfunction()

foreach(action require install)
    foreach(component library tools)
        foreach(row IN LISTS ${component}_copyrights)
            string(REGEX MATCH "(.*)=(.*)" matched ${row})
            cmake_language(CALL rgen_${action}_${component}_licence ${CMAKE_MATCH_1}
                           ${CMAKE_MATCH_2} /usr/share/doc/${CMAKE_MATCH_2}/copyright)
        endforeach()
    endforeach()
    foreach(name IN LISTS common_licences)
        cmake_language(CALL rgen_${action}_library_licence ${name}.txt base-files
                       /usr/share/common-licenses/${name})
    endforeach()
endforeach()
install(DIRECTORY ${rgen_third_party}/licences/ DESTINATION ${licences_dir} COMPONENT library
        PATTERN cpp-httplib.txt EXCLUDE)
if(RGEN_BUILD_TOOLS)
    rgen_install_with(rgen ${rgen_third_party}/licences/cpp-httplib.txt DESTINATION ${licences_dir})
endif()
