# SPDX-License-Identifier: MIT
# Makes the completion files of rgen by running it: not when cross-compiling, and not in
# instrumented builds.

set(completion_files "")
if(CMAKE_CROSSCOMPILING OR RGEN_SANITIZER)
    return()
endif()

set(completion_dir ${PROJECT_BINARY_DIR}/completion)
set(completion_files ${completion_dir}/rgen ${completion_dir}/_rgen)
file(MAKE_DIRECTORY ${completion_dir})
add_custom_command(
    OUTPUT ${completion_files}
    COMMAND rgen completion bash > ${completion_dir}/rgen
    COMMAND rgen completion zsh > ${completion_dir}/_rgen
    DEPENDS rgen
    COMMENT "Writing the completion files of rgen"
    VERBATIM)
add_custom_target(rgen_completion ALL DEPENDS ${completion_files})
