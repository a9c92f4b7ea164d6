// Limits for templates that come from the fuzzer. The library itself sets none.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_FUZZ_XSLT_LIMITS_H
#define RGEN_FUZZ_XSLT_LIMITS_H

namespace rgen_fuzz {

// From now on no template of the process writes a file or uses a network, and none reads another
// file than those of the current folder that are named in xslt_limits.cpp. Called once, after the
// first generator was made.
void installXsltLimits();

// While it lives, transformations of the calling thread stop after some instructions, steps of
// expressions and megabytes.
class XsltBudget {
public:
    XsltBudget();
    ~XsltBudget();
    XsltBudget(const XsltBudget&) = delete;
    XsltBudget& operator=(const XsltBudget&) = delete;
};

}  // namespace rgen_fuzz

#endif
