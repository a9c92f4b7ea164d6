// The page of the preview, made from preview/page/.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "base/embedded_file.h"

namespace cli {

/// index.html and what it loads.
const std::vector<EmbeddedFile>& previewPage();

}  // namespace cli
