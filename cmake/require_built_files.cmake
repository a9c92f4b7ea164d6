# SPDX-License-Identifier: MIT
# The first step of an installation: fails if one of the files in `required` is not built.

set(missing "")
foreach(file IN LISTS required)
    if(NOT EXISTS "${file}")
        list(APPEND missing "${file}")
    endif()
endforeach()
if(missing)
    list(JOIN missing "\n  " names)
    message(FATAL_ERROR "Nothing was installed, since not everything is built. Missing:\n  ${names}\n"
                        "Build all of it first: cmake --build \"${build_folder}\"")
endif()
