// Merging by gettext's own program.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/po_file.h"

namespace cli {

struct MsgmergeResult {
    /// Absent when the program is not installed, or failed.
    std::optional<PoFile> merged;
    /// Why it failed.
    std::string fault;
};

/// The catalogue with the wanted entries, merged by "msgmerge".
MsgmergeResult mergeWithMsgmerge(const PoFile& catalogue, const std::vector<PoEntry>& wanted);

}  // namespace cli
