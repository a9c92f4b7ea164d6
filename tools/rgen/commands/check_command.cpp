// rgen check: what is wrong with templates, where, and what to do about it.
//
// SPDX-License-Identifier: MIT
#include <set>

#include "base/text_functions.h"
#include "commands/commands.h"
#include "data/po_catalogue.h"
#include "data/report_input.h"
#include "report/report_output.h"
#include "templates/catalogue_check.h"
#include "templates/data_document.h"
#include "templates/findings_document.h"
#include "templates/same_formats.h"
#include "templates/template_check.h"
#include "templates/template_files.h"

namespace cli {
namespace {

constexpr const char* pathHint = "check the path of the template";

/// The catalogue of --lang; empty without the option.
std::string catalogueFor(const TemplateFile& file, const std::string& lang) {
    if (lang.empty() || namesCatalogueFile(lang)) return lang;
    if (file.directory && file.type) return chosenCatalogue(*file.directory, *file.type, lang);
    throw usageError("\"" + file.path + "\" belongs to no report type, so there is no catalogue",
                     "give a .po file to --lang");
}

TemplateText readTemplate(const TemplateFile& file, const std::string& lang, Console& console) {
    const std::string path = catalogueFor(file, lang);
    if (path.empty()) return TemplateText::read(file.path, pathHint);
    const PoCatalogue catalogue(path, false, console);
    return TemplateText::read(file.path, pathHint, [&catalogue](const std::string& message) {
        const std::string* translation = catalogue.find(message);
        return translation != nullptr ? *translation : message;
    });
}

/// The data document of a report with the values of the arguments.
std::string documentFor(const TemplateFile& file, const Arguments& arguments, Console& console) {
    if (!file.directory || !file.type) {
        throw usageErrorOf(
            "check", "\"" + file.path + "\" belongs to no report type, so no report can be made",
            "leave out the values, or put it into a data directory");
    }
    const repgen::Generator generator;
    const ReportInput input = collectInput(arguments.values, generator, console);
    return dataDocument(*file.directory, *file.type, input);
}

bool hasValues(const ValueArguments& values) {
    return !values.data.empty() || !values.set.empty() || !values.pair.empty();
}

Findings check(const TemplateFile& file, const Arguments& arguments, Console& console) {
    CheckedUse use;
    use.format = file.format;
    if (hasValues(arguments.values)) use.dataDocument = documentFor(file, arguments, console);
    const TemplateText text = readTemplate(file, arguments.report.lang, console);
    Findings findings = differingFormats(file, text);
    findings.add(checkTemplate(text, use));
    return findings;
}

/// The catalogues of the report types that the templates belong to.
Findings checkCatalogues(const std::vector<TemplateFile>& files) {
    Findings findings;
    std::set<std::string> known;
    for (const TemplateFile& file : files) {
        if (!file.directory || !file.type) continue;
        const bool isNew = known.insert(file.directory->folder + '\0' + file.type->guidText).second;
        if (isNew) findings.add(catalogueFindings(*file.directory, *file.type));
    }
    return findings;
}

std::string linesOf(const Findings& findings) {
    std::string lines;
    for (const Finding& finding : findings.all())
        lines += inOneLine(findingLine(finding)) + "\n" + findingExcerpt(finding);
    return lines;
}

std::string summaryOf(const Findings& findings, std::size_t templates) {
    const std::size_t errors = findings.count(Severity::Error);
    const std::size_t warnings = findings.count(Severity::Warning);
    const std::string where = " in " + countText(templates, "template");
    if (errors + warnings == 0) return "no mistake" + where;
    return countText(errors, "error") + ", " + countText(warnings, "warning") + where;
}

void requireOneDocument(const Arguments& arguments) {
    if (!arguments.json || arguments.check.sarif != "-") return;
    throw usageErrorOf("check", "--json and --sarif - exclude each other",
                       "both write to standard output");
}

void describe(const Findings& findings, std::size_t templates, JsonDocument& document) {
    document.set("templates", static_cast<std::int64_t>(templates));
    document.set("errors", static_cast<std::int64_t>(findings.count(Severity::Error)));
    document.set("warnings", static_cast<std::int64_t>(findings.count(Severity::Warning)));
    document.set("findings", findingRows(findings));
}

}  // namespace

ExitCode runCheck(const Arguments& arguments, Console& console, JsonDocument& document) {
    requireOneDocument(arguments);
    const std::vector<TemplateFile> files =
        namedTemplates(arguments.operands, arguments.type, arguments.dataDir);
    Findings findings;
    for (const TemplateFile& file : files)
        findings.add(check(file, arguments, console));
    findings.add(checkCatalogues(files));
    const bool isFine = findings.count(Severity::Error) == 0 &&
                        (!arguments.check.strict || findings.count(Severity::Warning) == 0);
    document.set("ok", isFine);
    describe(findings, files.size(), document);
    const std::string& sarif = arguments.check.sarif;
    if (!sarif.empty()) writeOutput(sarif, sarifDocument(findings).text());
    if (!arguments.json && sarif != "-") printLines(linesOf(findings));
    console.say(summaryOf(findings, files.size()));
    return isFine ? ExitCode::Done : ExitCode::Findings;
}

}  // namespace cli
