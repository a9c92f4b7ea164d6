// What is wrong with catalogues, and with translations at the places of their markers.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>

#include "data/po_catalogue.h"
#include "data/report_type.h"
#include "templates/finding.h"
#include "templates/markup_scanner.h"
#include "templates/template_text.h"

namespace cli {

/// What no template is needed for: a damaged file, a wrong encoding, characters and markup that XML
/// does not allow, two entries for one text.
Findings catalogueFileFindings(const CatalogueFile& catalogue);

/// Translations that break the place of their marker in a template: the attribute, the XPath
/// string, the comment or the style sheet in which it is. `text` is a template without translations
/// and `markup` the scan of its text(). The places are those in the catalogue.
Findings translationFindings(const TemplateText& text, const Markup& markup,
                             const CatalogueFile& catalogue);

/// Notes about the entries for texts that are not among these.
Findings staleFindings(const CatalogueFile& catalogue, const std::set<std::string>& texts);

/// All of these for the catalogues of a report type in all languages.
Findings catalogueFindings(const DataDirectory& directory, const ReportType& type);

}  // namespace cli
