// SPDX-License-Identifier: MIT
#include "preview/page_mistakes.h"

#include "base/console.h"
#include "data/po_catalogue.h"
#include "templates/data_document.h"
#include "templates/template_check.h"

namespace cli {
namespace {

constexpr std::size_t mostWarnings = 3;

std::string pathOf(const CheckedView& view) {
    return templatePath(view.directory, view.type, view.format);
}

TemplateText readTemplate(const CheckedView& view, Console& console) {
    const std::string catalogueFile = cataloguePath(view.directory, view.type, view.language);
    if (view.language.empty() || catalogueFile.empty()) {
        return TemplateText::read(pathOf(view), "check its rights");
    }
    const PoCatalogue catalogue(catalogueFile, false, console);
    return TemplateText::read(pathOf(view), "check its rights",
                              [&catalogue](const std::string& message) {
                                  const std::string* const found = catalogue.find(message);
                                  return found == nullptr ? message : *found;
                              });
}

Finding findingOf(const CheckedView& view, const CommandError& failure) {
    Finding finding;
    finding.code = "no-report";
    finding.what = failure.what();
    finding.advice = failure.hint;
    if (isAboutTemplate(failure)) finding.file = pathOf(view);
    return finding;
}

}  // namespace

bool isAboutTemplate(const CommandError& failure) {
    const RgenStatus status = failure.status.value_or(RGEN_OK);
    return status == RGEN_E_XSLT_PARSE || status == RGEN_E_XSLT_APPLY ||
           status == RGEN_E_XSLT_RESULT;
}

Findings templateFindings(const CheckedView& view, Console& console) {
    try {
        return checkTemplate(readTemplate(view, console), {view.format});
    } catch (const CommandError&) {
        return {};
    }
}

Findings runFindings(const CheckedView& view, const ReportInput& input, Console& console) {
    try {
        const std::string document = dataDocument(view.directory, view.type, input);
        return checkTemplate(readTemplate(view, console), {view.format, document});
    } catch (const CommandError&) {
        return {};
    }
}

Findings mistakesOf(const CheckedView& view, const Findings& findings,
                    const std::optional<CommandError>& failure) {
    Findings mistakes;
    for (const Finding& finding : findings.all()) {
        if (finding.severity == Severity::Error) mistakes.add(finding);
    }
    const bool isExplained = !mistakes.empty() && failure && isAboutTemplate(*failure);
    if (failure && !isExplained) mistakes.add(findingOf(view, *failure));
    return mistakes;
}

std::vector<std::string> warningLines(const Findings& findings) {
    std::vector<std::string> lines;
    for (const Finding& finding : findings.all()) {
        if (finding.severity == Severity::Warning) lines.push_back(findingLine(finding));
    }
    if (lines.size() <= mostWarnings) return lines;
    const std::size_t more = lines.size() - mostWarnings;
    lines.resize(mostWarnings);
    lines.push_back(std::to_string(more) + " more; \"rgen check\" lists them");
    return lines;
}

}  // namespace cli
