// Mistakes that can be seen without data come first, because a run after them says less.
//
// SPDX-License-Identifier: MIT
#include "report/template_diagnosis.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/console.h"
#include "base/interruption.h"
#include "templates/data_check.h"
#include "templates/data_document.h"
#include "templates/findings_document.h"
#include "templates/template_check.h"

namespace cli {
namespace {

constexpr std::size_t mostLines = 5;

std::string pathOf(const TemplateUse& use) {
    return templatePath(use.directory, use.type, use.format);
}

TemplateText textOf(const TemplateUse& use, const KnownTemplate& known) {
    return {pathOf(use), known.text, use.translate};
}

const Findings& mistakesOf(const TemplateUse& use, KnownTemplate& known) {
    const auto found = known.mistakes.find(use.catalogue);
    if (found != known.mistakes.end()) return found->second;
    CheckedUse checked;
    checked.format = use.format;
    Findings mistakes = checkTemplate(textOf(use, known), checked);
    return known.mistakes.emplace(use.catalogue, std::move(mistakes)).first->second;
}

Findings only(Severity severity, const Findings& findings) {
    Findings chosen;
    for (const Finding& finding : findings.all())
        if (finding.severity == severity) chosen.add(finding);
    return chosen;
}

/// The library calls an empty report a failure.
Finding emptyReport(const TemplateTree& tree) {
    Finding finding;
    finding.code = "empty-report";
    finding.what = "the template writes nothing for this data";
    finding.advice = "compare the names that it shows with those of \"rgen report --show-data\"";
    return tree.atElement(tree.root(), std::move(finding));
}

/// What the template says and does with the report's own data. The run cannot be cancelled, so
/// Ctrl-C ends the program meanwhile.
Findings findingsOfRun(const TemplateUse& use, const KnownTemplate& known) {
    const TemplateText text = textOf(use, known);
    const TemplateTree tree(text);
    if (tree.root() == nullptr) return {};
    const std::string document = dataDocument(use.directory, use.type, use.input);
    const ImmediateInterrupt atOnce;
    const TemplateRun run = runTemplate(text.text(), document);
    Findings findings = runFindings(tree, run);
    const bool isEmpty = run.result.empty() && findings.count(Severity::Error) == 0;
    if (isEmpty) findings.add(emptyReport(tree));
    findings.sort();
    return findings;
}

/// The report does not depend on the run: whatever prevents it is no failure of its own.
Findings findingsOfRunIfPossible(const TemplateUse& use, const KnownTemplate& known) {
    try {
        return findingsOfRun(use, known);
    } catch (const CommandError& error) {
        if (error.exitCode == ExitCode::Interrupted) throw;
    } catch (const std::system_error&) {
        // The same.
    }
    return {};
}

void noteFinding(const Finding& finding, Console& console) {
    console.note(placeText(finding.file, finding.position) + ": " + findingText(finding));
}

void noteMessages(const Findings& findings, Console& console) {
    for (const Finding& finding : findings.all())
        if (finding.severity == Severity::Note) noteFinding(finding, console);
}

/// The mistakes; for lack of any the warnings, because the template failed.
Findings reasons(const TemplateUse& use, KnownTemplate& known, Console& console) {
    const Findings& mistakes = mistakesOf(use, known);
    Findings errors = only(Severity::Error, mistakes);
    if (!errors.empty()) return errors;
    const Findings findings = findingsOfRunIfPossible(use, known);
    noteMessages(findings, console);
    errors = only(Severity::Error, findings);
    return errors.empty() ? only(Severity::Warning, mistakes) : errors;
}

std::string linesOf(const Findings& findings) {
    const std::vector<Finding>& all = findings.all();
    const std::size_t shown = all.size() <= mostLines ? all.size() : mostLines - 1;
    std::string lines;
    for (std::size_t i = 0; i < shown; ++i)
        lines += inOneLine(findingLine(all[i])) + "\n";
    if (all.size() == 1) lines += findingExcerpt(all.front());
    if (shown < all.size()) {
        lines += std::to_string(all.size() - shown) + " more; run: rgen check \"" +
                 inOneLine(all.front().file) + "\"\n";
    }
    return lines;
}

}  // namespace

bool isTemplateStatus(RgenStatus status) {
    return status == RGEN_E_XSLT_PARSE || status == RGEN_E_XSLT_APPLY ||
           status == RGEN_E_XSLT_RESULT;
}

void addTemplateDiagnosis(const TemplateUse& use, CommandError& error, Console& console) {
    KnownTemplate* const known = use.templates.find(pathOf(use));
    if (known == nullptr) return;
    const Findings found = reasons(use, *known, console);
    Diagnosis diagnosis;
    diagnosis.lines = found.empty() ? inOneLine(pathOf(use)) +
                                          ": no mistake was found in the template; run: rgen "
                                          "check, with --data and this data\n"
                                    : linesOf(found);
    diagnosis.findings = findingRows(found);
    error.diagnosis = std::make_shared<const Diagnosis>(std::move(diagnosis));
}

void noteTemplate(const TemplateUse& use, Console& console) {
    KnownTemplate* const known = use.templates.find(pathOf(use));
    if (known == nullptr) return;
    if (!std::exchange(known->isNoted, true)) {
        for (const Finding& marker : known->unmatchedMarkers.all())
            noteFinding(marker, console);
    }
    if (known->hasMessages) noteMessages(findingsOfRunIfPossible(use, *known), console);
}

}  // namespace cli
