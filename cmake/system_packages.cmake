# SPDX-License-Identifier: MIT
# Names the system's packages that a build needs and that are missing, before the first compiler is
# looked for. Systems without dpkg, and builds with third-party libraries of their own
# (RGEN_DEPENDENCIES), are not asked.

find_program(RGEN_DPKG dpkg-query)
mark_as_advanced(RGEN_DPKG)
if(NOT RGEN_DPKG OR RGEN_DEPENDENCIES)
    return()
endif()

set(group linux)
if(CMAKE_TOOLCHAIN_FILE MATCHES "mingw")
    set(group build)
endif()
execute_process(COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/scripts/setup --missing ${group}
                OUTPUT_VARIABLE missing OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
if(missing)
    string(REPLACE "\n" " " missing "${missing}")
    message(FATAL_ERROR "These packages are missing: ${missing}\n"
                        "  sudo apt-get install ${missing}\n"
                        "installs them, and so does: scripts/setup ${group}")
endif()
