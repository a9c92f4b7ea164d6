// rgen doctor: checks everything that a report needs and advises on what is missing.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "base/paths.h"
#include "base/rgen_version.h"
#include "base/text_functions.h"
#include "commands/commands.h"
#include "data/config_check.h"
#include "data/persistent_store.h"
#include "data/po_catalogue.h"
#include "data/report_type.h"
#include "data/xml_documents.h"
#include "library/error_json.h"
#include "library/library_calls.h"
#include "process/child_process.h"
#include "process/this_process.h"
#include "report/report_generation.h"
#include "report/report_output.h"
#include "templates/template_check.h"
#include "templates/template_files.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

enum class Result { Fine, Note, Failed };

class Checks {
public:
    Checks(const Arguments& arguments, Console& console)
        : arguments_(arguments), console_(console) {}

    void add(const std::string& name, Result result, const std::string& text) {
        static constexpr const char* words[] = {"ok", "note", "FAIL"};
        const std::string word = words[static_cast<int>(result)];
        JsonDocument row;
        row.set("name", name);
        row.set("result", word);
        row.set("text", text);
        rows_.push_back(std::move(row));
        if (result == Result::Failed) ++failed_;
        if (!arguments_.json) {
            printData(word + std::string(6 - word.size(), ' ') + inOneLine(name + ": " + text) +
                      "\n");
        }
    }

    Console& console() const { return console_; }

    ExitCode finish(JsonDocument& document) const {
        if (failed_ > 0) {
            describeFailure({ExitCode::Environment, countText(failed_, "check") + " failed"},
                            document);
        }
        document.set("checks", rows_);
        document.set("notes", console_.notes());
        return failed_ > 0 ? ExitCode::Environment : ExitCode::Done;
    }

private:
    const Arguments& arguments_;
    Console& console_;
    std::vector<JsonDocument> rows_;
    std::size_t failed_ = 0;
};

void writeFile(const std::string& path, const std::string& content) {
    fs::create_directories(fs::u8path(path).parent_path());
    std::ofstream(fs::u8path(path), std::ios::binary) << content;
}

void checkLibrary(const std::string& name, const std::string& version, const std::string& path,
                  Checks& checks) {
    const std::string text = version + " (" + path + ")";
    if (version == rgenVersion()) {
        checks.add(name, Result::Fine, text);
    } else {
        checks.add(name, Result::Note,
                   text + "; rgen is " + rgenVersion() + ", install both of one version");
    }
}

void checkLibraries(Checks& checks) {
    const RgenhVersions loaded = loadedLibraries();
    checkLibrary("library", loaded.library, loaded.libraryPath, checks);
    checkLibrary("host library", loaded.host, loaded.hostPath, checks);
}

/// A report from a data directory of its own; the expected text comes back in "found".
bool makesReport(std::string& found) {
    const std::string guid = "0d0c7053-0000-4000-8000-000000000000";
    const TemporaryFolder temporary;
    const std::string folder = temporary.file("data");
    writeFile(folder + "/.rgen/config.xml", "<config><reportTypes><type guid=\"" + guid +
                                                "\"><persistDataFile>none.xml</persistDataFile>"
                                                "<reportTypeFile>check.xsl</reportTypeFile></type>"
                                                "</reportTypes></config>");
    writeFile(folder + "/.rgen/templates/txt/check.xsl",
              "<xsl:stylesheet version=\"1.0\" "
              "xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\"><xsl:output method=\"text\"/>"
              "<xsl:template match=\"/\"><xsl:value-of select=\"//property\"/></xsl:template>"
              "</xsl:stylesheet>");
    repgen::Generator generator(folder);
    ReportOutput output({folder + "/check.txt", Delivery::File, false, ""});
    output.generate(generator, {findReportType({folder}, guid).guid, "txt", {{"Check", "fine"}}});
    const RgenStatus status = output.prepare();
    if (status < 0) {
        found = statusSentence(status);
        return false;
    }
    output.deliver();
    std::ifstream file(fs::u8path(folder + "/check.txt"), std::ios::binary);
    std::getline(file, found);
    return found == "fine";
}

void checkReport(Checks& checks) {
    std::string found;
    bool isMade = false;
    try {
        isMade = makesReport(found);
    } catch (const std::exception& exception) {
        found = exception.what();
    }
    if (isMade) {
        checks.add("report", Result::Fine, "a report in the temporary folder was made");
    } else {
        checks.add("report", Result::Failed,
                   "a report in the temporary folder failed: " + found + "; look at its rights");
    }
}

void checkPersistentData(const DataDirectory& directory, const ReportType& type, Checks& checks) {
    const std::string name = type.name + ", persistent data";
    try {
        recoverPersistentData(directory, type, checks.console());
        requireReadable(directory.path(type.persistDataFile));
    } catch (const CommandError& error) {
        checks.add(name, Result::Failed, errorText(error));
        return;
    }
    repgen::Generator generator;
    setDataDir(generator, directory.folder);
    RgenStatus status = RGEN_OK;
    const std::size_t values = persistentValues(generator, type.guid, status).size();
    const std::string path = directory.path(type.persistDataFile);
    std::error_code ignored;
    const bool isFile = fs::is_regular_file(fs::u8path(path), ignored);
    const std::string damage = isFile ? damageOf(path) : std::string();
    if (!damage.empty()) {
        checks.add(name, Result::Failed, "\"" + path + "\" is damaged: " + damage + "; correct it");
    } else if (status >= 0) {
        checks.add(name, Result::Fine, std::to_string(values) + " values");
    } else if (!fs::exists(fs::u8path(path), ignored)) {
        checks.add(name, Result::Note, "none yet; rgen persist set stores some");
    } else {
        checks.add(name, status == RGEN_E_OPEN_PERSIST ? Result::Failed : Result::Note,
                   "\"" + path + "\": " + statusSentence(status));
    }
}

void addTemplateFindings(const std::string& name, const std::string& path, const Findings& findings,
                         Checks& checks) {
    const std::string advice = "; run: rgen check \"" + path + "\"";
    const std::size_t errors = findings.count(Severity::Error);
    const std::size_t warnings = findings.count(Severity::Warning);
    if (errors > 0) {
        const auto first = std::find_if(
            findings.all().begin(), findings.all().end(),
            [](const Finding& finding) { return finding.severity == Severity::Error; });
        checks.add(
            name, Result::Failed,
            placeText(first->file, first->position) + ": " + findingText(*first) +
                (errors == 1 ? "" : " (first of " + countText(errors, "error") + advice + ")"));
    } else if (warnings > 0) {
        checks.add(name, Result::Note, countText(warnings, "warning") + advice);
    } else {
        checks.add(name, Result::Fine, "\"" + path + "\"");
    }
}

/// Formats that share a template have one line.
void checkTemplates(const DataDirectory& directory, const ReportType& type, Checks& checks) {
    for (const TemplateFile& file : templatesOf(directory, type)) {
        std::string formats = file.format;
        for (const std::string& format : file.sameFormats)
            formats += " and " + format;
        const std::string name = type.name + ", template for " + formats;
        try {
            CheckedUse use;
            use.format = file.format;
            const TemplateText text = TemplateText::read(file.path, "check its access rights");
            addTemplateFindings(name, file.path, checkTemplate(text, use), checks);
        } catch (const CommandError& error) {
            checks.add(name, Result::Failed, errorText(error));
        }
    }
}

/// All of the data directory, because --lang can name each of them.
void checkCatalogues(const DataDirectory& directory, Checks& checks) {
    std::vector<std::string> paths;
    std::error_code failure;
    for (const auto& entry :
         fs::directory_iterator(fs::u8path(directory.path("translations")), failure)) {
        if (entry.path().extension() == ".po") paths.push_back(entry.path().filename().u8string());
    }
    std::sort(paths.begin(), paths.end());
    for (const std::string& path : paths) {
        const std::string name = "catalogue " + path;
        try {
            const std::string whole = directory.path("translations/" + path);
            const PoCatalogue catalogue(whole, false, checks.console());
            checks.add(name, Result::Fine, "\"" + whole + "\"");
        } catch (const CommandError& error) {
            checks.add(name, Result::Failed, errorText(error));
        }
    }
}

void checkType(const DataDirectory& directory, const ReportType& type, Checks& checks) {
    std::string formats;
    std::string missing;
    for (const std::string& format : outputFormats()) {
        std::error_code ignored;
        const std::string path = templatePath(directory, type, format);
        const bool exists = fs::is_regular_file(fs::u8path(path), ignored);
        std::string& list = exists ? formats : missing;
        list += (list.empty() ? "" : ", ") + (exists ? format : "\"" + path + "\"");
    }
    if (formats.empty()) {
        checks.add(type.name, Result::Failed, "no template; put one at " + missing);
    } else {
        checks.add(type.name, Result::Fine, type.guidText + ", templates for " + formats);
        checkTemplates(directory, type, checks);
    }
    checkPersistentData(directory, type, checks);
}

/// Returns whether there is a data directory to check.
bool openDirectory(const Arguments& arguments, Checks& checks, DataDirectory& directory) {
    directory = namedDataDirectory(arguments.dataDir);
    requireAccess(directory.configPath());
    if (!arguments.dataDir && !exists(directory.configPath())) {
        checks.add("data directory", Result::Note, "none here; name one with --data-dir");
        return false;
    }
    openDataDirectory(arguments.dataDir);
    return true;
}

void checkDirectory(const Arguments& arguments, Checks& checks) {
    try {
        DataDirectory directory;
        if (!openDirectory(arguments, checks, directory)) return;
        const std::vector<ReportType> types = reportTypes(directory);
        const std::string path = "\"" + directory.configPath() + "\"";
        for (const ConfigMistake& mistake : configurationMistakes(directory.configPath())) {
            checks.add("configuration", mistake.isError ? Result::Failed : Result::Note,
                       mistake.text + "; " + mistake.advice);
        }
        if (types.empty()) {
            checks.add("data directory", Result::Failed, path + " has no usable report type");
            return;
        }
        checks.add("data directory", Result::Fine,
                   path + ", report types: " + std::to_string(types.size()));
        for (const ReportType& type : types)
            checkType(directory, type, checks);
        checkCatalogues(directory, checks);
    } catch (const CommandError& error) {
        checks.add("data directory", Result::Failed, errorText(error));
    }
}

/// Output and exit code of a program; -1 when it cannot be started or does not end.
int outputOf(const fs::path& program, const std::string& argument, std::string& output) {
    constexpr std::chrono::milliseconds slice{100};
    constexpr int slices = 900;
    const InterruptGuard guard;
    const TemporaryFolder folder;
    tools::ProcessRequest request;
    request.program = program;
    request.arguments = {argument};
    request.outputFile = fs::u8path(folder.file("output.txt"));
    // Removed with everything that an interrupted converter leaves in it.
    for (const char* variable : {"TMPDIR", "TMP", "TEMP"})
        request.environment[variable] = request.outputFile.parent_path().u8string();
    int code = -1;
    try {
        tools::ChildProcess process(request);
        std::optional<int> ended;
        for (int i = 0; i < slices && !ended; ++i) {
            throwIfInterrupted();
            ended = process.wait(slice);
        }
        code = ended.value_or(-1);
    } catch (const std::system_error& error) {
        output = error.what();
        return -1;
    }
    std::ifstream file(request.outputFile, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("vellum: warning", 0) == 0) continue;
        output += (output.empty() ? "" : ", ") + trimmed(line);
    }
    return code;
}

/// The output of the converter names the engine that converted its test page.
void checkConverter(Checks& checks) {
    const std::optional<fs::path> converter = tools::findProgram("vellum");
    if (!converter) {
        checks.add("converter", Result::Failed,
                   "the program \"vellum\" is not on the search path, so there are no pdf "
                   "reports; install it beside rgen or on PATH");
        return;
    }
    std::string output;
    const bool isFine = outputOf(*converter, "--check", output) == 0;
    checks.add("converter", isFine ? Result::Fine : Result::Failed,
               converter->u8string() + (output.empty() ? "" : ", " + output));
}

}  // namespace

ExitCode runDoctor(const Arguments& arguments, Console& console, JsonDocument& document) {
    Checks checks(arguments, console);
    checkLibraries(checks);
    checkReport(checks);
    checkDirectory(arguments, checks);
    checkConverter(checks);
    return checks.finish(document);
}

}  // namespace cli
