// Bringing a catalogue up to date with the texts of the templates.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "data/po_file.h"

namespace cli {

/// The entries that a catalogue should have: `texts`, with the contexts and plural forms that the
/// catalogue has for them. A report does not look at contexts, so an entry keeps the one it has.
std::vector<PoEntry> wantedEntries(const PoFile& catalogue, const std::vector<PoEntry>& texts);

/// The catalogue with exactly the wanted entries, in their order. A translation of a similar text
/// becomes a fuzzy one; translations that nothing uses any more become obsolete.
PoFile mergedCatalogue(const PoFile& catalogue, const std::vector<PoEntry>& wanted);

/// The merged file that another program made, with the header of the catalogue and the comments of
/// the wanted entries. Throws std::runtime_error when it lacks a translation that `catalogue` has.
PoFile completedMerge(PoFile merged, const PoFile& catalogue, const std::vector<PoEntry>& wanted);

/// The header of a new file; without a language for a template of catalogues.
PoEntry newHeader(const std::string& language);

}  // namespace cli
