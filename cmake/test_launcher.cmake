# SPDX-License-Identifier: MIT
# rgen_test_launcher: the words in front of a test program's command.

set(rgen_test_launcher ${CMAKE_CROSSCOMPILING_EMULATOR})
if(RGEN_SANITIZER MATCHES "thread")
    # The thread sanitizer of this compiler cannot cope with widely spread address space layouts.
    execute_process(COMMAND setarch -R true RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
    if(result EQUAL 0)
        set(rgen_test_launcher setarch -R)
    endif()
endif()
