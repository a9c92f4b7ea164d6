# SPDX-License-Identifier: MIT
# Names the Debian packages that a build needs and that are missing, before CMake looks for a compiler.
# Other systems, and builds with third-party libraries of their own (RGEN_DEPENDENCIES), are not
# checked.

option(RGEN_CHECK_PACKAGES "Stop if a Debian package that the build needs is missing" ON)
find_program(RGEN_DPKG dpkg-query)
mark_as_advanced(RGEN_DPKG)
if(NOT RGEN_CHECK_PACKAGES OR NOT RGEN_DPKG OR RGEN_DEPENDENCIES OR NOT EXISTS /etc/debian_version)
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
                        "installs them, and so does: scripts/setup ${group}\n"
                        "-DRGEN_CHECK_PACKAGES=OFF skips this check.")
endif()
