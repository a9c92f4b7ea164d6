// SPDX-License-Identifier: MIT
#include "preview/report_preview.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "base/command_error.h"
#include "base/console.h"
#include "base/input_file.h"
#include "base/paths.h"
#include "preview/page_mistakes.h"
#include "process/this_process.h"
#include "templates/template_text.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

std::string keyOf(const WantedView& wanted) {
    return wanted.format + "|" + wanted.language + "|" + wanted.data;
}

JsonDocument document(const Finding& finding) {
    JsonDocument shown;
    shown.set("severity", severityName(finding.severity));
    shown.set("what", finding.what);
    shown.set("advice", finding.advice);
    shown.set("file", finding.file);
    const bool hasPlace = !finding.file.empty() && !finding.sourceLine.empty();
    shown.set("line", static_cast<std::int64_t>(hasPlace ? finding.position.line : 0));
    shown.set("column", static_cast<std::int64_t>(hasPlace ? finding.position.column : 0));
    shown.set("excerpt", findingExcerpt(finding));
    return shown;
}

JsonDocument choice(const std::string& id, const std::string& title) {
    JsonDocument shown;
    shown.set("id", id);
    shown.set("title", title);
    return shown;
}

bool isFormat(const std::string& format) {
    const std::vector<std::string>& formats = outputFormats();
    return std::find(formats.begin(), formats.end(), format) != formats.end();
}

}  // namespace

ReportPreview::ReportPreview(PreviewSettings settings)
    : settings_(std::move(settings)), type_(findReportType(settings_.directory, settings_.type)) {}

/// The configuration may change while the preview is shown. Throws a CommandError.
void ReportPreview::readType() {
    type_ = findReportType(settings_.directory, settings_.type);
}

WantedView ReportPreview::completed(const WantedView& wanted) const {
    const std::vector<DataChoice> choices = dataChoices(settings_, type_);
    WantedView whole = wanted;
    if (whole.data.empty()) whole.data = choices.front().id;
    const bool isKnown =
        std::any_of(choices.begin(), choices.end(),
                    [&whole](const DataChoice& each) { return each.id == whole.data; });
    if (!isKnown) throw usageError("there is no data \"" + whole.data + "\"", "choose another");
    return whole;
}

void ReportPreview::describeChoices(JsonDocument& document) const {
    std::vector<std::string> formats;
    for (const std::string& format : outputFormats()) {
        if (exists(templatePath(settings_.directory, type_, format))) formats.push_back(format);
    }
    std::vector<JsonDocument> data;
    for (const DataChoice& each : dataChoices(settings_, type_))
        data.push_back(choice(each.id, each.title));
    document.set("type", type_.name);
    document.set("formats", formats);
    document.set("languages", catalogueLanguages(settings_.directory, type_));
    document.set("data", data);
    document.set("editor", !settings_.editor.empty());
}

ReportRequest ReportPreview::requestFor(const WantedView& wanted, Console& console) {
    ReportRequest request;
    request.type = type_;
    request.arguments.format = wanted.format;
    request.arguments.lang = wanted.language;
    request.arguments.base = settings_.base;
    request.arguments.output = "report." + wanted.format;
    request.input = chosenInput(settings_, type_, wanted.data, generator_, console);
    return request;
}

/// The library reads the copy; messages name the files of the data directory itself.
std::string ReportPreview::make(const WantedView& wanted, LineMarks marks, Console& console) {
    scratch_.update(settings_.directory, type_, wanted.format, marks,
                    showsPersistentData(wanted.data));
    setDataDir(generator_, scratch_.folder());
    const ReportContext context{generator_, settings_.directory, console, settings_.values.raw};
    return makePage(context, requestFor(wanted, console));
}

/// A template whose meaning the marks change is shown without them. Its mistakes are those of the
/// template itself.
std::string ReportPreview::makeMarked(const WantedView& wanted, Console& console) {
    if (wanted.format == "txt") return make(wanted, LineMarks::Without, console);
    try {
        return make(wanted, LineMarks::With, console);
    } catch (const CommandError& failure) {
        if (!failure.status) throw;
    }
    return make(wanted, LineMarks::Without, console);
}

/// Makes the report, or returns why that was not possible.
std::optional<CommandError> ReportPreview::tryToMake(const WantedView& wanted, Console& console,
                                                     std::string& page) {
    try {
        if (!isFormat(wanted.format)) throw usageError("there is no such format");
        readType();
        page = makeMarked(completed(wanted), console);
    } catch (const CommandError& failure) {
        if (failure.exitCode == ExitCode::Interrupted) throw;
        return failure;
    }
    return {};
}

/// A page with mistakes does not replace the last good one.
std::uint64_t ReportPreview::store(const WantedView& wanted, std::string page, bool isGood) {
    const std::string key = keyOf(wanted);
    if (isGood) return pages_.add(key, wanted.format, std::move(page));
    const std::uint64_t last = pages_.lastOf(key);
    if (last != 0 || page.empty()) return last;
    return pages_.add(key + "|with mistakes", wanted.format, std::move(page));
}

JsonDocument ReportPreview::view(const WantedView& wanted) {
    const std::lock_guard lock(mutex_);
    const Clock::time_point start = Clock::now();
    Console console(true);
    std::string page;
    const std::optional<CommandError> failure = tryToMake(wanted, console, page);
    const CheckedView checked = {settings_.directory, type_, wanted.format, wanted.language};
    Console unused(true);
    Findings findings = templateFindings(checked, unused);
    const bool isUnexplained =
        failure && isAboutTemplate(*failure) && findings.count(Severity::Error) == 0;
    if (isUnexplained) {
        findings = runFindings(checked, requestFor(completed(wanted), unused).input, unused);
    }
    const Findings mistakes = mistakesOf(checked, findings, failure);
    std::vector<JsonDocument> rows;
    for (const Finding& mistake : mistakes.all())
        rows.push_back(cli::document(mistake));
    std::vector<std::string> notes = console.notes();
    for (std::string& line : warningLines(findings))
        notes.push_back(std::move(line));

    JsonDocument document;
    document.set("ok", mistakes.empty());
    document.set("page",
                 static_cast<std::int64_t>(store(wanted, std::move(page), mistakes.empty())));
    document.set("mistakes", rows);
    document.set("notes", notes);
    describeChoices(document);
    document.set("milliseconds",
                 std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    return document;
}

std::string ReportPreview::pdf(const WantedView& wanted) {
    const std::lock_guard lock(mutex_);
    Console console(true);
    readType();
    const WantedView whole = completed({"pdf", wanted.language, wanted.data});
    scratch_.update(settings_.directory, type_, whole.format, LineMarks::Without,
                    showsPersistentData(whole.data));
    setDataDir(generator_, scratch_.folder());
    const ReportContext context{generator_, settings_.directory, console, settings_.values.raw};
    ReportRequest request = requestFor(whole, console);
    request.arguments.output = scratch_.file("report.pdf");
    makeReport(context, request);
    return readInputFile(request.arguments.output, "try again");
}

std::string ReportPreview::templateFile(const std::string& format) {
    const std::lock_guard lock(mutex_);
    const std::string path = templatePath(settings_.directory, type_, format);
    return tools::absolutePath(fs::u8path(path)).u8string();
}

JsonDocument ReportPreview::describe(const TemplatePlace& place) {
    const std::string path = templateFile(place.format);
    const std::lock_guard lock(mutex_);
    const LineIndex lines(readInputFile(path, "check its rights"));
    JsonDocument shown;
    shown.set("file", templatePath(settings_.directory, type_, place.format));
    shown.set("line", static_cast<std::int64_t>(place.line));
    shown.set("column", static_cast<std::int64_t>(place.column));
    shown.set("source", lines.lineAt(lines.offsetOfLine(place.line)));
    return shown;
}

std::string ReportPreview::readShownFile(const std::string& path) {
    const std::lock_guard lock(mutex_);
    shownFiles_.insert(path);
    return readInputFile(path, "check its rights");
}

std::vector<std::string> ReportPreview::involvedFiles() {
    const std::lock_guard lock(mutex_);
    const DataDirectory& directory = settings_.directory;
    std::vector<std::string> files = {directory.configPath()};
    for (const std::string& format : outputFormats())
        files.push_back(templatePath(directory, type_, format));
    if (!type_.persistDataFile.empty()) files.push_back(directory.path(type_.persistDataFile));
    // Has the folder watched, where a first catalogue may appear.
    files.push_back(directory.path("translations/" + type_.name + ".po"));
    for (const std::string& language : catalogueLanguages(directory, type_))
        files.push_back(cataloguePath(directory, type_, language));
    files.insert(files.end(), shownFiles_.begin(), shownFiles_.end());
    for (std::string& file : dataFiles(settings_, type_))
        files.push_back(std::move(file));
    return files;
}

}  // namespace cli
