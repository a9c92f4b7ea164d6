// Every case of a program that is linked with this check leaves the pools in order: no block is in
// use when a piece of XML work ends, and none is released twice.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_POOL_FAULT_CHECK_H
#define RGEN_TESTS_SUPPORT_POOL_FAULT_CHECK_H

#include "memory/pool_slot.h"

namespace rgen_test {

// For cases that misuse a pool on purpose: the faults since the case began, or since the last call.
// The check then ignores them.
rgen::memory::PoolFaults acknowledgePoolFaults();

}  // namespace rgen_test

#endif
