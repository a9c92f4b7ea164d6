// Included before everything else where cpp-httplib is compiled: the C++ runtime of GCC 12 has a
// second version of this function, which older systems lack. Both versions do the same.
//
// SPDX-License-Identifier: MIT
#pragma once

__asm__(
    ".symver _ZNSt18condition_variable4waitERSt11unique_lockISt5mutexE,"
    "_ZNSt18condition_variable4waitERSt11unique_lockISt5mutexE@GLIBCXX_3.4.11");
