# SPDX-License-Identifier: MIT
# rgen_test_launcher: the command that starts a test program; empty if it needs none.

set(rgen_test_launcher ${CMAKE_CROSSCOMPILING_EMULATOR})
if(RGEN_SANITIZER MATCHES "thread")
    # The thread sanitizer of this compiler fails if addresses are randomised over a large range.
    execute_process(COMMAND setarch -R true RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
    if(result EQUAL 0)
        set(rgen_test_launcher setarch -R)
    endif()
endif()
