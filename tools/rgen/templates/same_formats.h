// Templates that are to be the same for several formats: <?rgen-same html pdf?>.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "templates/finding.h"
#include "templates/template_files.h"
#include "templates/template_text.h"

namespace cli {

/// An error for each format that the template names and whose file has another content.
Findings differingFormats(const TemplateFile& file, const TemplateText& text);

}  // namespace cli
