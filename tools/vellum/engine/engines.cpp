// The choice of an engine and its command line.
//
// SPDX-License-Identifier: MIT
#include "engine/engines.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/failure.h"
#include "base/message.h"
#include "page/file_url.h"
#include "process/this_process.h"

namespace vellum {
namespace {

EngineKind kindOf(const std::string& name) {
    const std::string lower = lowerCase(name);
    if (lower.find("weasyprint") != std::string::npos) return EngineKind::WeasyPrint;
    if (lower.find("wkhtmltopdf") != std::string::npos) return EngineKind::WkHtmlToPdf;
    return EngineKind::Chromium;
}

/// An engine by its name in the list, or any other program by its name or path. Its `program` is
/// empty when it is not found.
Engine namedEngine(const std::string& name) {
    for (const Engine& engine : engineCandidates()) {
        if (engine.name == name && !engine.program.empty()) return engine;
    }
    const std::string stem = std::filesystem::u8path(name).stem().u8string();
    return {stem, kindOf(stem), tools::findProgram(name).value_or(std::filesystem::path())};
}

/// Returns whether the engine obeys the content security policy that staging inserts.
bool obeysPolicy(const Engine& engine) {
    return engine.kind == EngineKind::Chromium;
}

/// On purpose: a page cannot choose an engine that ignores the policy, since it would escape the
/// policy by that. The user can, by naming the engine.
std::string refusedWish(const std::string& name, bool isThere) {
    const std::string wish = "the page asks for the engine \"" + name + "\", which ";
    if (!isThere) return wish + "was not found";
    return wish + "knows no policy for pages; name it with --engine or VELLUM_ENGINE to use it";
}

std::vector<std::string> chromiumArguments(const EngineTask& task) {
    std::vector<std::string> arguments = {
        "--headless",
        "--disable-gpu",
        "--disable-extensions",
        "--disable-background-networking",
        "--disable-component-update",
        "--disable-default-apps",
        "--disable-sync",
        "--no-first-run",
        "--no-default-browser-check",
        "--user-data-dir=" + task.profile.u8string(),
        "--host-resolver-rules=MAP * ~NOTFOUND",
        "--no-pdf-header-footer",
        "--generate-pdf-document-outline",
        "--print-to-pdf=" + task.pdf.u8string(),
    };
    if (task.isLarge) arguments.emplace_back("--disable-pdf-tagging");
    if (isAdministrator()) arguments.emplace_back("--no-sandbox");
    arguments.push_back(fileUrl(task.page));
    return arguments;
}

std::vector<std::string> wkhtmltopdfArguments(const EngineTask& task) {
    return {"--quiet",
            "--disable-javascript",
            "--disable-plugins",
            "--encoding",
            "utf-8",
            "--proxy",
            "http://127.0.0.1:1",
            "--enable-local-file-access",
            "--load-error-handling",
            "ignore",
            "--load-media-error-handling",
            "ignore",
            task.page.u8string(),
            task.pdf.u8string()};
}

}  // namespace

Engine chooseEngine(const std::string& named, const std::string& askedByPage) {
    if (!named.empty()) {
        Engine engine = namedEngine(named);
        if (!engine.program.empty()) return engine;
        throw Failure(ExitCode::NoEngine, "the engine \"" + named +
                                              "\" was not found; \"vellum --list-engines\" shows "
                                              "those there are");
    }
    const std::vector<Engine> candidates = engineCandidates();
    const auto isFound = [](const Engine& engine) { return !engine.program.empty(); };
    const auto first = std::find_if(candidates.begin(), candidates.end(), isFound);
    const auto asked = std::find_if(
        candidates.begin(), candidates.end(),
        [&](const Engine& engine) { return isFound(engine) && engine.name == askedByPage; });
    const bool isThere = asked != candidates.end();
    if (isThere && (obeysPolicy(*asked) || asked == first)) return *asked;
    if (!askedByPage.empty()) printWarning(refusedWish(askedByPage, isThere));
    if (first != candidates.end()) return *first;
    throw Failure(
        ExitCode::NoEngine,
        "no PDF engine was found; install chromium-headless-shell, or name an engine with "
        "VELLUM_ENGINE");
}

std::vector<std::string> engineArguments(const Engine& engine, const EngineTask& task) {
    switch (engine.kind) {
        case EngineKind::WeasyPrint:
            return {"--encoding",       "utf-8", "--base-url", task.base, task.page.u8string(),
                    task.pdf.u8string()};
        case EngineKind::WkHtmlToPdf:
            return wkhtmltopdfArguments(task);
        default:
            return chromiumArguments(task);
    }
}

}  // namespace vellum
