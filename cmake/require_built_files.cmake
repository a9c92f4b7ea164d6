# SPDX-License-Identifier: MIT
# A first step of an installation: fails if one of the files in `required` is not built.

set(missing "")
foreach(file IN LISTS required)
    if(NOT EXISTS "${file}")
        list(APPEND missing "${file}")
    endif()
endforeach()
if(missing)
    list(JOIN missing "\n  " names)
    message(FATAL_ERROR "Nothing was installed, since these files are not built:\n  ${names}\n"
                        "Build them first: cmake --build \"${build_folder}\"")
endif()
