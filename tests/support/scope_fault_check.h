// Every case of a program that is linked with this check leaves the pools in order: no block is in
// use when a scope ends, and none is released twice.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_SCOPE_FAULT_CHECK_H
#define RGEN_TESTS_SUPPORT_SCOPE_FAULT_CHECK_H

#include "memory/pool_scope.h"

namespace rgen_test {

// For cases that misuse a pool on purpose: what was noted since the case began, or since the last
// call. The check does not see it any more.
rgen::memory::ScopeFaults acknowledgeScopeFaults();

}  // namespace rgen_test

#endif
