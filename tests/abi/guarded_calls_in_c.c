/*
 * The header of the guarded calls as C reads it; compiling is the test.
 *
 * SPDX-License-Identifier: MIT
 */
#include "guarded_calls.h"

RgenStatus cancelEverything(RgenReportGenerator* generator);

RgenStatus cancelEverything(RgenReportGenerator* generator) {
    RgenGuardedFailure failure = {{0}};
    return rgenGuarded_cancel(generator, 0, &failure);
}
