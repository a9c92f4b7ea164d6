// The marked texts of templates as the entries of a catalogue.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "data/po_file.h"
#include "data/report_type.h"

namespace cli {

struct CollectedTexts {
    /// One for each text, in the order of their first places.
    std::vector<PoEntry> entries;
    /// Marked texts that no catalogue can contain, with their places.
    std::vector<std::string> notes;
};

/// The texts of all templates of the report types. References are relative to the folder ".rgen".
/// Throws a CommandError for a type without a template.
CollectedTexts collectTexts(const DataDirectory& directory, const std::vector<ReportType>& types);

/// The report types that use a catalogue file for a language: several do unless it is named after
/// one of them. Types without a template are left out.
std::vector<ReportType> typesUsing(const DataDirectory& directory, const std::string& catalogue,
                                   const std::string& language);

}  // namespace cli
