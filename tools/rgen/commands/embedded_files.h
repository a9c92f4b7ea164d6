// Files that rgen carries along. The definitions are generated from the files themselves.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "base/embedded_file.h"

namespace cli {

/// The sample report type for disk-imaging acquisitions; the paths are counted from the new folder.
const std::vector<EmbeddedFile>& acquisitionSample();

}  // namespace cli
