// SPDX-License-Identifier: MIT
#include "report/golden_case.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/console.h"
#include "base/input_file.h"
#include "base/paths.h"
#include "base/safe_files.h"
#include "base/time_zone.h"
#include "templates/data_document.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* templateFile = "template.xsl";
constexpr const char* persistentFile = "persistent.xml";

bool isFile(const std::string& path) {
    std::error_code ignored;
    return fs::is_regular_file(fs::u8path(path), ignored);
}

std::string configuration(const ReportType& type) {
    return "<config><reportTypes><type guid=\"" + type.guidText + "\"><persistDataFile>" +
           persistentFile + "</persistDataFile><reportTypeFile>" + templateFile +
           "</reportTypeFile></type></reportTypes></config>\n";
}

/// The same error, with the case before its message.
CommandError inCase(const GoldenCase& golden, const CommandError& error) {
    CommandError named(error.exitCode, golden.title() + ": " + error.what(), error.hint);
    named.status = error.status;
    return named;
}

}  // namespace

std::string GoldenCase::file(const std::string& fileName) const {
    return joinedPath(folder, fileName);
}

std::string GoldenCase::expectedFile(const std::string& format) const {
    return file(format == "pdf" ? "expected.pdf.html" : "expected." + format);
}

std::vector<GoldenCase> goldenCases(const DataDirectory& directory, const ReportType& type) {
    std::vector<GoldenCase> cases;
    const std::string folder = directory.path("tests/" + type.name);
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(fs::u8path(folder), failure)) {
        std::error_code ignored;
        const std::string name = entry.path().filename().u8string();
        if (!entry.is_directory(ignored) || name.front() == '.') continue;
        cases.push_back({directory, type, name, joinedPath(folder, name)});
    }
    std::sort(cases.begin(), cases.end(),
              [](const GoldenCase& one, const GoldenCase& other) { return one.name < other.name; });
    return cases;
}

GoldenRun::GoldenRun(const GoldenCase& golden, Console& console) try
    : case_(golden), directory_{stage_.file("case")}, type_(golden.type) {
    if (isFile(golden.file("options.json")))
        options_ = readGoldenOptions(golden.file("options.json"));
    if (!isFile(golden.file("data.json"))) {
        throw usageError("there is no \"" + golden.file("data.json") + "\"",
                         "write the values of the test into it");
    }
    useTimeZone(options_.timeZone);
    type_.templateFile = templateFile;
    type_.persistDataFile = persistentFile;
    makeDirectory(console);
} catch (const CommandError& error) {
    throw inCase(golden, error);
} catch (const std::system_error& error) {
    throw CommandError(ExitCode::Environment,
                       "cannot use the temporary folder: " + error.code().message(),
                       "check that it may be written and has room");
}

void GoldenRun::makeDirectory(Console& console) {
    for (const std::string& format : outputFormats()) {
        const std::string original = templatePath(case_.directory, case_.type, format);
        const std::string copy = templatePath(directory_, type_, format);
        fs::create_directories(fs::u8path(folderOf(copy)));
        if (isFile(original)) writeNewFile(copy, readInputFile(original, "check the template"));
    }
    writeNewFile(directory_.configPath(), configuration(type_));
    setDataDir(generator_, directory_.folder);
    input_.values = valuesOf(case_.file("data.json"), console);
    if (isFile(case_.file("persist.json"))) storePersistentData(console);
    const std::string path = chosenCatalogue(case_.directory, case_.type, options_.lang);
    if (path.empty()) return;
    catalogue_ = std::make_unique<PoCatalogue>(path, options_.raw, console);
    translator_ = std::make_unique<Translator>(*catalogue_);
    repgen::call(rgenh_setTranslateFunction, generator_.handle(), Translator::translate,
                 translator_.get());
}

ValueSet GoldenRun::valuesOf(const std::string& path, Console& console) const {
    ValueArguments arguments;
    arguments.data.push_back(path);
    arguments.raw = options_.raw;
    return collectInput(arguments, generator_, console).values;
}

void GoldenRun::storePersistentData(Console& console) {
    const ValueSet values = valuesOf(case_.file("persist.json"), console);
    try {
        generator_.setPersistentValues(type_.guid, libraryValues(values));
    } catch (const repgen::StatusError& error) {
        throw statusFailure(case_.file("persist.json"), error.status(), "correct the values");
    }
}

std::vector<std::string> GoldenRun::formats() const {
    if (!options_.formats.empty()) return options_.formats;
    std::vector<std::string> expected;
    std::vector<std::string> possible;
    for (const std::string& format : outputFormats()) {
        if (isFile(case_.expectedFile(format))) expected.push_back(format);
        const bool hasTemplate = isFile(templatePath(directory_, type_, format));
        if (hasTemplate && format != "pdf") possible.push_back(format);
    }
    return expected.empty() ? possible : expected;
}

std::string GoldenRun::report(const std::string& format) {
    const InterruptGuard guard(generator_.handle());
    throwIfInterrupted();
    const repgen::Request request{type_.guid, format, libraryValues(input_.values), {}};
    try {
        const repgen::Bytes bytes = generator_.generateBytes(request);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    } catch (const repgen::StatusError& error) {
        throwIfInterrupted();
        throw statusFailure(templatePath(case_.directory, case_.type, format), error.status(),
                            "\"rgen check\" says what is wrong with a template");
    }
}

std::string GoldenRun::document() const {
    return dataDocument(directory_, type_, input_);
}

TemplateText GoldenRun::templateText(const std::string& format) const {
    const std::string path = templatePath(case_.directory, case_.type, format);
    if (!catalogue_) return TemplateText::read(path, "check the template");
    return TemplateText::read(path, "check the template", [this](const std::string& message) {
        const std::string* translation = catalogue_->find(message);
        return translation != nullptr ? *translation : message;
    });
}

}  // namespace cli
