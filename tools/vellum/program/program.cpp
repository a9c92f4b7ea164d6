// Turns options into actions, and failures into messages and exit codes.
//
// SPDX-License-Identifier: MIT
#include "program/program.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>

#include "base/failure.h"
#include "base/message.h"
#include "engine/conversion.h"
#include "engine/output_file.h"
#include "engine/temporary_files.h"
#include "engine/watchdog.h"
#include "process/guardian.h"
#include "process/this_process.h"
#include "program/options.h"
#include "text/printable_text.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

void print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
}

std::string shown(const fs::path& path) {
    return tools::printable(path.u8string());
}

std::string engineOption(const Options& options) {
    if (!options.engine.empty()) return options.engine;
    return tools::environmentVariable("VELLUM_ENGINE").value_or("");
}

ExitCode listEngines() {
    bool hasEngine = false;
    for (const Engine& engine : engineCandidates()) {
        const bool isFound = !engine.program.empty();
        print(engine.name + "\t" + (isFound ? shown(engine.program) : "not found") + "\n");
        hasEngine = hasEngine || isFound;
    }
    return hasEngine ? ExitCode::Done : ExitCode::NoEngine;
}

/// Text, a table and a picture, as reports have them.
constexpr const char* testPage =
    "<!DOCTYPE html><html lang=\"en\"><head><meta charset=\"utf-8\"><title>vellum</title></head>"
    "<body><h1>vellum</h1><p>This page was converted.</p><table border=\"1\"><tr><td>1</td>"
    "<td>2</td></tr></table><svg width=\"40\" height=\"40\"><circle cx=\"20\" cy=\"20\" "
    "r=\"18\"/></svg></body></html>";

ExitCode check(const Options& options) {
    tools::Guardian guardian;
    const TemporaryFolder folder(guardian);
    std::ofstream(folder / "test.html", std::ios::binary) << testPage;
    const auto start = std::chrono::steady_clock::now();
    const Engine engine =
        convert({folder / "test.html", "", folder / "test.pdf", engineOption(options)});
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    print("engine: " + tools::printable(engine.name) + " (" + shown(engine.program) + ")\n");
    print("page: " + std::to_string(fs::file_size(folder / "test.pdf")) + " bytes, " +
          std::to_string(took.count()) + " ms\n");
    return ExitCode::Done;
}

ExitCode runConversion(const Options& options) {
    const fs::path output = fs::u8path(options.output);
    convert({fs::u8path(options.input), options.base, output, engineOption(options)});
    removeErrorText(output);
    return ExitCode::Done;
}

ExitCode run(const Options& options) {
    if (options.help) {
        print(helpText());
        return ExitCode::Done;
    }
    if (options.version) {
        print("vellum " VELLUM_VERSION "\n");
        return ExitCode::Done;
    }
    if (options.listEngines) return listEngines();
    return options.check ? check(options) : runConversion(options);
}

/// Also writes the message next to the output, since the library does not show standard error.
int fail(ExitCode code, const std::string& text, const Options& options) {
    const std::string message = tools::printable(text);
    printError(message);
    // A page that was deleted before it was read: the library has cancelled.
    std::error_code ignored;
    const bool isGone = code == ExitCode::Input && !fs::exists(fs::u8path(options.input), ignored);
    if (!options.output.empty() && code != ExitCode::Cancelled && !isGone) {
        writeErrorReport(fs::u8path(options.output), message, code != ExitCode::Output);
    }
    return static_cast<int>(code);
}

}  // namespace

int runProgram(const std::vector<std::string>& arguments) {
    Options options;
    try {
        cancelOnSignal(SIGINT);
        cancelOnSignal(SIGTERM);
        parseOptions(arguments, options);
        return static_cast<int>(run(options));
    } catch (const Failure& failure) {
        return fail(failure.exitCode, failure.what(), options);
    } catch (const std::exception& exception) {
        return fail(ExitCode::EngineFailed,
                    std::string(exception.what()) + "; try \"vellum --check\"", options);
    }
}

}  // namespace vellum
