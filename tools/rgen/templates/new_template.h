// The first template of a new report type, written from the values that it is to show.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "values/value.h"

namespace cli {

struct NewTemplate {
    /// The report type: "health".
    std::string name;
    std::string title;
    /// The template serves the formats html and pdf.
    bool servesPdf = false;
};

/// The whole template for html, and for pdf. The values are shown in this order.
std::string newPageTemplate(const NewTemplate& wanted, const std::vector<Value>& values);

/// The whole template for txt.
std::string newTextTemplate(const NewTemplate& wanted, const std::vector<Value>& values);

/// "Device sector size" for "Device.SectorSize".
std::string labelFor(const std::string& name);

}  // namespace cli
