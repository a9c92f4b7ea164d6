// A program around the parts of vellum that work on a page, for what cannot be seen from outside:
// pages without an engine, many at once; how often work looks at the clock and at a cancellation; a
// clock that runs as a case wants it.
//
//   staging_probe stage BASE PAGE...   writes PAGE.staged for each page
//   staging_probe late PAGE            reads and stages a page while every look takes a second
//   staging_probe gone PAGE            removes the page at the first look
//   staging_probe signal PAGE          gets SIGTERM at the first look
//
// For each page it prints one line: the exit code that vellum would have, the number of looks and
// the message.
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
using vellum::Watch;

unsigned looks = 0;

Watch::Clock::time_point slowClock() {
    static Watch::Clock::time_point now;
    now += std::chrono::seconds(1);
    return now;
}

/// Does the work on one page; `atLook` is called at each look before the watch looks.
void stage(const std::string& base, const std::string& name, const Watch& watch,
           const std::function<void()>& atLook) {
    looks = 0;
    int code = 0;
    std::string message;
    const fs::path path = fs::u8path(name);
    try {
        Checkpoint checkpoint([&] {
            ++looks;
            atLook();
            watch.look();
        });
        const vellum::StagedPage page =
            vellum::stagePage(vellum::readPage(path, checkpoint), base, checkpoint);
        vellum::warnOfMissingFiles(page, checkpoint);
        vellum::writePage(fs::u8path(name + ".staged"), page.content, checkpoint);
    } catch (const vellum::Failure& failure) {
        code = static_cast<int>(failure.exitCode);
        message = failure.what();
    }
    std::cout << code << ' ' << looks << ' ' << message << '\n';
}

}  // namespace

int main() {
    const std::vector<std::string> words = stand_in_engine::arguments();
    if (words.size() < 3) return 2;
    const std::string& command = words[1];
    const fs::path page = fs::u8path(words[2]);
    if (command == "stage") {
        for (std::size_t i = 3; i < words.size(); ++i)
            stage(words[2], words[i], Watch(fs::u8path(words[i])), [] {});
    } else if (command == "late") {
        stage("", words[2], Watch(page, slowClock), [] {});
    } else if (command == "gone") {
        stage("", words[2], Watch(page), [&page] { fs::remove(page); });
    } else if (command == "signal") {
        vellum::stopOnSignal(SIGTERM);
        stage("", words[2], Watch(page), [] { std::raise(SIGTERM); });
    } else {
        return 2;
    }
    return 0;
}
