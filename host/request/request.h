// The object behind a request handle.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "request/arena.h"
#include "strata_repgenlib/rgen_host.h"

namespace rgenh {

/// A record of rgen.h and the memory that it points to.
struct Request {
    Arena arena;
    RgenCInputParams input = {};
};

/// The GUID of a text. Throws an ArgumentError if it is none.
RgenGuid requiredGuid(std::string_view text, int argument = 0);

/// Throws an ArgumentError for parts that cannot be used, and std::bad_alloc.
std::shared_ptr<const Request> makeRequest(const RgenhRequestParts& parts);

}  // namespace rgenh

/// A host's reference to a request; jobs have references of their own.
struct RgenhRequest {
    explicit RgenhRequest(std::shared_ptr<const rgenh::Request> shared)
        : request(std::move(shared)) {}

    const std::shared_ptr<const rgenh::Request> request;
};
