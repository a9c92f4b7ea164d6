// SPDX-License-Identifier: MIT
#include "engine/conversion.h"

#include <system_error>

#include "base/failure.h"
#include "engine/output_file.h"
#include "engine/temporary_files.h"
#include "engine/watchdog.h"
#include "page/file_url.h"
#include "page/page_file.h"
#include "page/staged_page.h"
#include "page/warnings.h"
#include "process/child_process.h"
#include "process/guardian.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

/// For larger pages, in bytes, tagging the PDF would double the time of a conversion.
constexpr std::size_t largePage = 2'000'000;

void requireOtherFile(const ConversionRequest& request) {
    std::error_code failure;
    if (!fs::equivalent(request.input, request.output, failure) || failure) return;
    throw Failure(ExitCode::Output, "cannot write \"" + request.output.u8string() +
                                        "\": it is the page itself; name another file");
}

tools::ProcessRequest engineProcess(const Engine& engine, const EngineTask& task,
                                    const TemporaryFolder& work) {
    tools::ProcessRequest process;
    process.program = engine.program;
    process.arguments = engineArguments(engine, task);
    process.outputFile = work / "output.txt";
    // WeasyPrint ignores the policy of the page. A proxy that does not exist keeps it off the
    // network.
    for (const char* variable : {"http_proxy", "https_proxy", "ftp_proxy"})
        process.environment[variable] = "http://127.0.0.1:1";
    process.environment["no_proxy"] = "";
    const std::string folder = work.path().u8string();
    for (const char* variable : {"TMPDIR", "TMP", "TEMP"})
        process.environment[variable] = folder;
    return process;
}

/// Returns when the PDF is complete. The engine has ended or is killed.
void runEngine(const Engine& engine, const EngineTask& task, const StagedPage& page,
               const PartFile& part, const TemporaryFolder& work, Watchdog& watchdog) {
    Checkpoint checkpoint([&watchdog] { watchdog.check(); });
    tools::ProcessRequest start = engineProcess(engine, task, work);
    start.memoryLimit = watchdog.memoryLimit();
    tools::ChildProcess process(start);
    FontCheck fonts(page, work.path(), checkpoint);
    watchdog.waitForPdf(engine, process, part, start.outputFile);
    fonts.finish([&watchdog] { watchdog.requireNotCancelled(); });
}

}  // namespace

Engine convert(const ConversionRequest& request) {
    Watchdog watchdog(request.input);
    Checkpoint checkpoint([&watchdog] { watchdog.check(); });
    std::string content = readPage(request.input, checkpoint);
    const std::size_t size = content.size();
    watchdog.setLimits(size);
    requireOtherFile(request);
    tools::Guardian guardian;
    PartFile part(request.output, guardian);
    const StagedPage page =
        stagePage(std::move(content), baseUrl(request.base, request.input), checkpoint);
    const Engine engine = chooseEngine(request.engine, page.engine);
    warnOfMissingFiles(page, checkpoint);

    const TemporaryFolder work(guardian);
    EngineTask task;
    task.page = work / "page.html";
    task.pdf = part.path();
    task.profile = work / "profile";
    task.base = page.base;
    task.isLarge = size > largePage;
    writePage(task.page, page.content, checkpoint);
    runEngine(engine, task, page, part, work, watchdog);
    part.deliver([&watchdog] { watchdog.requireNotCancelled(); });
    return engine;
}

}  // namespace vellum
