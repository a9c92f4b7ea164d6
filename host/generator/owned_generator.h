// Ownership of a generator of the first library.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <new>

#include "strata_repgenlib/rgen.h"

namespace rgenh {

struct GeneratorDeleter {
    void operator()(RgenReportGenerator* generator) const noexcept {
        rgen_freeReportGenerator(generator);
    }
};

using OwnedGenerator = std::unique_ptr<RgenReportGenerator, GeneratorDeleter>;

/// Throws std::bad_alloc if memory is exhausted.
inline OwnedGenerator newGenerator() {
    OwnedGenerator generator(rgen_newReportGenerator());
    if (generator == nullptr) throw std::bad_alloc();
    return generator;
}

}  // namespace rgenh
