// Calls the parts of vellum that work on a page, for what cannot be tested from outside: many pages
// without an engine, how often the work checks time and cancellation, a clock that the test
// controls.
//
//   staging_probe stage BASE PAGE...   writes PAGE.staged for each page
//   staging_probe late PAGE            reads and stages a page while every check takes a second
//   staging_probe gone PAGE            deletes the page at the first check
//   staging_probe signal PAGE          receives SIGTERM at the first check
//
// Prints a line for each page: the exit code that vellum would return, the number of checks and the
// message.
//
// SPDX-License-Identifier: MIT
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <iostream>

#include "base/failure.h"
#include "engine/watchdog.h"
#include "page/page_file.h"
#include "page/staged_page.h"
#include "page/warnings.h"
#include "vellum/stand_in_engine.h"

namespace {

namespace fs = std::filesystem;
using vellum::Checkpoint;
using vellum::Watchdog;

unsigned checks = 0;

Watchdog::Clock::time_point slowClock() {
    static Watchdog::Clock::time_point now;
    now += std::chrono::seconds(1);
    return now;
}

/// Does the work on one page; calls `beforeCheck` before each check of the watchdog.
void stage(const std::string& base, const std::string& name, const Watchdog& watchdog,
           const std::function<void()>& beforeCheck) {
    checks = 0;
    int code = 0;
    std::string message;
    const fs::path path = fs::u8path(name);
    try {
        Checkpoint checkpoint([&] {
            ++checks;
            beforeCheck();
            watchdog.check();
        });
        const vellum::StagedPage page =
            vellum::stagePage(vellum::readPage(path, checkpoint), base, checkpoint);
        vellum::warnOfMissingFiles(page, checkpoint);
        vellum::writePage(fs::u8path(name + ".staged"), page.content, checkpoint);
    } catch (const vellum::Failure& failure) {
        code = static_cast<int>(failure.exitCode);
        message = failure.what();
    }
    std::cout << code << ' ' << checks << ' ' << message << '\n';
}

}  // namespace

int main() {
    const std::vector<std::string> words = stand_in_engine::arguments();
    if (words.size() < 3) return 2;
    const std::string& command = words[1];
    const fs::path page = fs::u8path(words[2]);
    if (command == "stage") {
        for (std::size_t i = 3; i < words.size(); ++i)
            stage(words[2], words[i], Watchdog(fs::u8path(words[i])), [] {});
    } else if (command == "late") {
        stage("", words[2], Watchdog(page, slowClock), [] {});
    } else if (command == "gone") {
        stage("", words[2], Watchdog(page), [&page] { fs::remove(page); });
    } else if (command == "signal") {
        vellum::cancelOnSignal(SIGTERM);
        stage("", words[2], Watchdog(page), [] { std::raise(SIGTERM); });
    } else {
        return 2;
    }
    return 0;
}
