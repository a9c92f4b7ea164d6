// rgen bundle: makes the one file that the library reads from a template and its parts.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>

#include "base/input_file.h"
#include "base/paths.h"
#include "base/text_functions.h"
#include "commands/commands.h"
#include "data/report_type.h"
#include "report/report_output.h"
#include "templates/bundle.h"
#include "templates/bundle_marks.h"
#include "templates/findings_document.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* pathHint = "check the path given to --output";

/// A bundled file and what became of it.
struct BundledFile {
    std::string output;
    std::string source;
    std::vector<std::string> files;
    /// "written", "unchanged"; with --check "outdated", "edited", "missing".
    std::string state;
    Findings findings;

    bool isFine() const { return state == "written" || state == "unchanged"; }
};

std::string withoutCarriageReturns(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

/// The template's bundle instruction. Throws a CommandError for a file that was made otherwise.
std::optional<BundleHeader> headerOf(const std::string& output) {
    if (output == "-" || !exists(output)) return std::nullopt;
    const auto header = bundleHeader(readInputFile(output, pathHint));
    if (header) return header;
    throw usageErrorOf("bundle", "\"" + output + "\" was not made by \"rgen bundle\"",
                       "remove it, or choose another --output");
}

std::string stateOf(const std::string& output, const std::string& text) {
    if (output == "-") return "written";
    if (!exists(output)) return "missing";
    const std::string content = readInputFile(output, pathHint);
    return withoutCarriageReturns(content) == withoutCarriageReturns(text) ? "unchanged"
                                                                           : "outdated";
}

CommandError editedByHand(const BundledFile& file) {
    return {ExitCode::Findings, "\"" + file.output + "\" was edited by hand after it was bundled",
            "move the changes to \"" + file.source + "\" or its parts and remove the file"};
}

BundledFile bundleOne(const BundleRequest& request, bool checks) {
    BundledFile file;
    file.output = request.output;
    file.source = request.source;
    const auto header = headerOf(request.output);
    Bundle bundle = makeBundle(request);
    file.files = std::move(bundle.files);
    file.findings = std::move(bundle.findings);
    if (!file.findings.empty()) {
        file.state = "failed";
        return file;
    }
    if (std::any_of(file.files.begin(), file.files.end(), [&file](const std::string& part) {
            std::error_code ignored;
            return file.output != "-" &&
                   fs::equivalent(fs::u8path(part), fs::u8path(file.output), ignored);
        })) {
        throw usageErrorOf("bundle", "\"" + file.output + "\" is a part of the bundle",
                           "choose another --output");
    }
    file.state = stateOf(request.output, bundle.text);
    if (file.state == "unchanged") return file;
    if (header && header->isEditedByHand()) {
        if (!checks) throw editedByHand(file);
        file.state = "edited";
    }
    if (checks) return file;
    writeOutput(request.output, bundle.text);
    file.state = "written";
    return file;
}

std::string pathFrom(const std::string& folder, const std::string& name) {
    return (fs::u8path(folder) / fs::u8path(name)).lexically_normal().generic_u8string();
}

/// The templates of the data directory that were bundled, with their sources.
std::vector<BundleRequest> bundledTemplates(const Arguments& arguments) {
    const DataDirectory directory = openDataDirectory(arguments.dataDir);
    std::vector<BundleRequest> requests;
    for (const std::string& format : outputFormats()) {
        std::error_code failure;
        const std::string folder = directory.path("templates/" + format);
        for (const auto& entry : fs::directory_iterator(fs::u8path(folder), failure)) {
            std::error_code ignored;
            if (!entry.is_regular_file(ignored)) continue;
            BundleRequest request;
            request.output = joinedPath(folder, entry.path().filename().u8string());
            const auto header = bundleHeader(readInputFile(request.output, pathHint));
            if (!header) continue;
            request.source = pathFrom(folder, header->source);
            request.partFolders = arguments.bundle.parts;
            for (const std::string& parts : header->partFolders) {
                if (arguments.bundle.parts.empty())
                    request.partFolders.push_back(pathFrom(folder, parts));
            }
            requests.push_back(std::move(request));
        }
    }
    std::sort(requests.begin(), requests.end(),
              [](const auto& one, const auto& other) { return one.output < other.output; });
    if (!requests.empty()) return requests;
    throw usageErrorOf("bundle", "\"" + directory.folder + "\" has no bundled template",
                       "name a source and --output");
}

std::vector<BundleRequest> wantedBundles(const Arguments& arguments) {
    const std::string& output = arguments.report.output;
    if (arguments.operands.empty()) {
        if (output.empty()) return bundledTemplates(arguments);
        throw usageErrorOf("bundle", "SOURCE is missing", "name the template with its includes");
    }
    if (output.empty()) {
        throw usageErrorOf("bundle", "--output is missing",
                           "name the template of the data directory to write");
    }
    if (output == "-" && (arguments.json || arguments.bundle.check)) {
        throw usageErrorOf("bundle", "--output - and --json or --check exclude each other",
                           "the bundle is on standard output");
    }
    return {{arguments.operands.front(), output, arguments.bundle.parts}};
}

JsonDocument documentOf(const BundledFile& file) {
    JsonDocument row;
    row.set("output", file.output);
    row.set("state", file.state);
    row.set("files", file.files);
    row.set("findings", findingRows(file.findings));
    return row;
}

std::string textFor(const BundledFile& file) {
    const std::string name = "\"" + file.output + "\"";
    if (file.state == "failed") return name + " was not written";
    if (file.state == "missing") return name + " is missing; run \"rgen bundle\" without --check";
    if (file.state == "outdated") {
        return name + " is older than \"" + file.source +
               "\" or a part of it; run \"rgen bundle\" without --check";
    }
    if (file.state == "edited") {
        const CommandError error = editedByHand(file);
        return std::string(error.what()) + "; " + error.hint;
    }
    const std::string parts = countText(file.files.size(), "file");
    return name + (file.state == "written" ? ": " : " is up to date: ") + parts;
}

void show(const BundledFile& file, const Arguments& arguments, Console& console) {
    std::string lines;
    for (const Finding& finding : file.findings.all())
        lines += inOneLine(findingLine(finding)) + "\n" + findingExcerpt(finding);
    if (!arguments.json && file.output != "-") printLines(lines);
    if (file.output == "-" && !lines.empty()) console.plain(lines);
    if (file.isFine()) {
        console.say(textFor(file));
    } else {
        console.errorLine(textFor(file));
    }
}

}  // namespace

ExitCode runBundle(const Arguments& arguments, Console& console, JsonDocument& document) {
    std::vector<JsonDocument> rows;
    bool isFine = true;
    for (const BundleRequest& request : wantedBundles(arguments)) {
        const BundledFile file = bundleOne(request, arguments.bundle.check);
        isFine = isFine && file.isFine();
        show(file, arguments, console);
        rows.push_back(documentOf(file));
    }
    document.set("ok", isFine);
    document.set("bundles", rows);
    return isFine ? ExitCode::Done : ExitCode::Findings;
}

}  // namespace cli
