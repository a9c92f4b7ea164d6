# SPDX-License-Identifier: MIT
# A first step of an installation of `programs`, with their `completion`: names those files that are
# not built and are left out. It fails if it was asked for programs alone and none is built.

set(left_out "")
foreach(file IN LISTS programs completion)
    if(NOT EXISTS "${file}")
        list(APPEND left_out "${file}")
    endif()
endforeach()
set(built ${programs})
list(REMOVE_ITEM built ${left_out})
list(JOIN left_out "\n  " names)
if(CMAKE_INSTALL_COMPONENT AND NOT built)
    message(FATAL_ERROR "Nothing was installed, since these files are not built:\n  ${names}\n"
                        "Build them first: cmake --build \"${build_folder}\"")
elseif(left_out)
    message(STATUS "Left out, since they are not built:\n  ${names}")
endif()
