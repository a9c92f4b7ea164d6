// GUIDs as texts.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "strata_repgenlib/rgen.h"

namespace rgenh {

/// Reads 36 characters in upper or lower case, in braces or not.
std::optional<RgenGuid> parseGuid(std::string_view text);

/// 36 characters in lower case. Needs no memory, as it is used when there is none.
class GuidText {
public:
    explicit GuidText(const RgenGuid& guid) noexcept;
    operator std::string_view() const noexcept { return text_; }

private:
    char text_[37];
};

}  // namespace rgenh
