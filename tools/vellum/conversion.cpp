// The watch over an engine. No exit code of an engine can be trusted: the file that it made and the
// clock decide.
//
// SPDX-License-Identifier: MIT
#include "conversion.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <system_error>
#include <thread>

#include "failure.h"
#include "html_tags.h"
#include "output_file.h"
#include "page_url.h"
#include "staged_page.h"
#include "warnings.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds pollPause{50};
/// So long a PDF must have been whole before a lingering engine is ended.
constexpr std::chrono::seconds settledTime{1};
/// Tagging a page of more bytes takes as long as the rest of the conversion.
constexpr std::size_t largePage = 2'000'000;

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int) {
    stopRequested = 1;
}

/// A folder for one conversion that goes with everything in it.
class WorkFolder {
public:
    WorkFolder() : path_(tools::makePrivateFolder("vellum")) {}
    ~WorkFolder() {
        // On Windows a program that was just ended may hold a file for a moment.
        constexpr std::chrono::milliseconds pause{20};
        std::error_code failure;
        for (int round = 0; round < 25; ++round) {
            fs::remove_all(path_, failure);
            if (!failure) return;
            std::this_thread::sleep_for(pause);
        }
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    fs::path operator/(const char* name) const { return path_ / name; }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

std::string readPage(const fs::path& path) {
    std::error_code ignored;
    errno = fs::is_directory(path, ignored) ? EISDIR : 0;
    std::ifstream file;
    if (errno == 0) file.open(path, std::ios::binary);
    if (!file.is_open()) {
        const int reason = errno == 0 ? EIO : errno;
        throw Failure(ExitCode::Input, "cannot read \"" + path.u8string() +
                                           "\": " + std::generic_category().message(reason) +
                                           "; check the path given to -i");
    }
    std::ostringstream content;
    content << file.rdbuf();
    if (file.bad() || (content.fail() && fs::file_size(path, ignored) > 0)) {
        throw Failure(ExitCode::Input,
                      "cannot read \"" + path.u8string() + "\" to its end; check the disk");
    }
    return content.str();
}

/// Half a page would become half a report.
void writePage(const fs::path& path, const std::string& content) {
    errno = 0;
    std::ofstream file(path, std::ios::binary);
    file << content;
    file.close();
    if (file) return;
    const int reason = errno == 0 ? EIO : errno;
    throw Failure(ExitCode::Output, "cannot write \"" + path.u8string() +
                                        "\": " + std::generic_category().message(reason) +
                                        "; make room in the folder for temporary files");
}

void requireOtherFile(const ConversionRequest& request) {
    std::error_code failure;
    if (!fs::equivalent(request.input, request.output, failure) || failure) return;
    throw Failure(ExitCode::Output, "cannot write \"" + request.output.u8string() +
                                        "\": it is the page itself; name another file");
}

std::chrono::seconds deadlineFor(std::size_t pageSize) {
    const std::string variable = tools::environmentVariable("VELLUM_TIMEOUT").value_or("");
    const long wanted = std::strtol(variable.c_str(), nullptr, 10);
    constexpr long longest = 86400;
    if (wanted > 0) return std::chrono::seconds(std::min(wanted, longest));
    constexpr std::size_t bytesPerSecond = 100'000;
    return std::chrono::seconds(60 + static_cast<long>(pageSize / bytesPerSecond));
}

/// The first part of a long line, without half a letter at its end.
std::string startOf(const std::string& line) {
    std::size_t end = std::min<std::size_t>(line.size(), 300);
    while (end < line.size() && end > 0 && (static_cast<unsigned char>(line[end]) & 0xC0U) == 0x80U)
        --end;
    return line.substr(0, end);
}

/// The last thing that an engine said. Lines in brackets are a browser's log, which says much even
/// when all is well; they count only when there is nothing else.
std::string lastWords(const fs::path& output) {
    std::ifstream file(output, std::ios::binary);
    std::string words;
    std::string log;
    for (std::string line; std::getline(file, line);) {
        const std::string text = trimmed(line);
        if (!text.empty()) (text[0] == '[' ? log : words) = text;
    }
    const std::string& last = words.empty() ? log : words;
    return last.empty() ? "it said nothing" : startOf(last);
}

class Watch {
public:
    Watch(const ConversionRequest& request, const Engine& engine, std::chrono::seconds deadline)
        : request_(request), engine_(engine), deadline_(deadline) {}

    /// The library removes the page's file when its generation is cancelled. Raises a Failure then.
    void requireNoCancel() const {
        std::error_code ignored;
        if (stopRequested == 0 && fs::exists(request_.input, ignored)) return;
        throw Failure(ExitCode::Cancelled, "cancelled");
    }

    /// Returns when the PDF is there and the engine has ended, or may be ended. Raises a Failure.
    void run(tools::ChildProcess& process, const PartFile& part, const fs::path& said) {
        while (!process.wait(pollPause)) {
            requireNoCancel();
            if (hasSettled(part)) break;
            if (Clock::now() - start_ > deadline_) failAsLate();
        }
        requireNoCancel();
        if (part.isComplete()) return;
        std::error_code ignored;
        const bool isThere = fs::exists(part.path(), ignored);
        throw Failure(ExitCode::EngineFailed,
                      engine_.name + (isThere ? " made no whole PDF: " : " made no PDF: ") +
                          lastWords(said) + "; try \"vellum --check\"");
    }

private:
    bool hasSettled(const PartFile& part) {
        std::error_code failure;
        const std::uintmax_t size = fs::file_size(part.path(), failure);
        const bool isSame = !failure && size == lastSize_ && part.isComplete();
        if (!isSame) {
            lastSize_ = failure ? 0 : size;
            settledSince_ = Clock::now();
        }
        return isSame && Clock::now() - settledSince_ > settledTime;
    }

    [[noreturn]] void failAsLate() const {
        throw Failure(ExitCode::TimeUp, engine_.name + " was still busy after " +
                                            std::to_string(deadline_.count()) +
                                            " s; set VELLUM_TIMEOUT to give it more time");
    }

    const ConversionRequest& request_;
    const Engine& engine_;
    std::chrono::seconds deadline_;
    Clock::time_point start_ = Clock::now();
    std::uintmax_t lastSize_ = 0;
    Clock::time_point settledSince_ = Clock::now();
};

tools::ProcessRequest engineProcess(const Engine& engine, const EngineTask& task,
                                    const WorkFolder& work) {
    tools::ProcessRequest process;
    process.program = engine.program;
    process.arguments = engineArguments(engine, task);
    process.outputFile = work / "output.txt";
    // What the policy in the page does not reach: WeasyPrint asks these for a way to the network.
    for (const char* variable : {"http_proxy", "https_proxy", "ftp_proxy"})
        process.environment[variable] = "http://127.0.0.1:1";
    process.environment["no_proxy"] = "";
    const std::string folder = work.path().u8string();
    for (const char* variable : {"TMPDIR", "TMP", "TEMP"})
        process.environment[variable] = folder;
    return process;
}

}  // namespace

Engine convert(const ConversionRequest& request) {
    std::string content = readPage(request.input);
    const std::size_t size = content.size();
    requireOtherFile(request);
    PartFile part(request.output);
    const StagedPage page = stagePage(std::move(content), baseUrl(request.base, request.input));
    Engine engine = chooseEngine(request.engine, page.engine);
    warnOfMissingFiles(page);

    const WorkFolder work;
    EngineTask task;
    task.page = work / "page.html";
    task.pdf = part.path();
    task.profile = work / "profile";
    task.base = page.base;
    task.isLarge = size > largePage;
    writePage(task.page, page.content);
    const tools::ProcessRequest start = engineProcess(engine, task, work);
    {
        tools::ChildProcess process(start);
        FontCheck fonts(page, work.path());
        Watch watch(request, engine, deadlineFor(size));
        watch.run(process, part, start.outputFile);
        fonts.finish([&watch] { watch.requireNoCancel(); });
        watch.requireNoCancel();
    }
    part.deliver();
    return engine;
}

void stopOnSignal(int signalNumber) {
    std::signal(signalNumber, requestStop);
}

}  // namespace vellum
