// What is to be said about the template of a report: why it failed, what it says itself, and
// markers that it has in vain.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/command_error.h"
#include "data/report_input.h"
#include "data/report_type.h"
#include "report/known_template.h"
#include "templates/template_text.h"

namespace cli {

/// How a report uses its template.
struct TemplateUse {
    const DataDirectory& directory;
    const ReportType& type;
    const ReportInput& input;
    std::string format;
    /// The path of the catalogue; may be empty.
    std::string catalogue;
    /// Empty without a catalogue.
    TemplateText::Translate translate;
    KnownTemplates& templates;
};

/// Tells whether a status of the library is about the template.
bool isTemplateStatus(RgenStatus status);

/// Adds to the error why the template failed, after one more run of it at most; notes the texts of
/// its xsl:message elements.
void addTemplateDiagnosis(const TemplateUse& use, CommandError& error, Console& console);

/// Notes the markers that the library does not see and the texts of xsl:message elements. Only a
/// template with such elements is run once more.
void noteTemplate(const TemplateUse& use, Console& console);

}  // namespace cli
