# SPDX-License-Identifier: MIT
# The first step of an installation: its other steps name files of the build and of the sources by
# their full paths, so both must still be where they were when the build was configured.

string(CONFIGURE [[
get_filename_component(here "${CMAKE_CURRENT_LIST_DIR}" REALPATH)
get_filename_component(configured "@PROJECT_BINARY_DIR@" REALPATH)
if(NOT here STREQUAL configured)
    message(FATAL_ERROR "Nothing was installed: this build was configured in\n"
                        "  @PROJECT_BINARY_DIR@\nand is now in\n  ${here}\n"
                        "Move it back, or configure it again with cmake --fresh and build it.")
endif()
if(NOT EXISTS "@PROJECT_SOURCE_DIR@/cmake/install.cmake")
    message(FATAL_ERROR "Nothing was installed: the sources of this build are no longer in\n"
                        "  @PROJECT_SOURCE_DIR@\n"
                        "Move them back, or configure it again with cmake --fresh and build it.")
endif()
]] require_same_folder @ONLY)
install(CODE "${require_same_folder}" ALL_COMPONENTS)
