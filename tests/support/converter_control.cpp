// SPDX-License-Identifier: MIT
#include "support/converter_control.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <sstream>
#include <thread>

namespace rgen_test {
namespace {

constexpr std::chrono::seconds longestWait{30};

bool waitUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + longestWait;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::string searchPath() {
    return programFolder() + nativePath("/stand_in") + pathSeparator + environmentText("PATH");
}

}  // namespace

ConverterControl::ConverterControl(const TempFolder& folder)
    : folder_(folder),
      path_("PATH", searchPath()),
      control_("STAND_IN_CONTROL", folder.file("converter.control")) {
    obey({});
}

void ConverterControl::obey(const ConverterCommands& commands) const {
    writeCommands("converter.control", commands);
}

std::string ConverterControl::writeCommands(const std::string& name,
                                            const ConverterCommands& commands) const {
    std::string text;
    for (const std::vector<std::string>& command : commands) {
        for (std::size_t index = 0; index < command.size(); ++index) {
            text += (index == 0 ? "" : "\t") + command[index];
        }
        text += '\n';
    }
    writeFile(folder_.file(name), text);
    return folder_.file(name);
}

bool waitForFile(const std::string& path) {
    const bool found = waitUntil([&path] { return exists(path); });
    EXPECT_TRUE(found) << "never made: " << path;
    return found;
}

bool waitForFiles(const std::string& folder, std::size_t count) {
    const bool found = waitUntil([&] { return namesIn(folder).size() >= count; });
    EXPECT_TRUE(found) << "fewer than " << count << " entries in " << folder;
    return found;
}

std::vector<std::string> loggedFacts(const std::string& logPath, const std::string& word) {
    std::vector<std::string> facts;
    std::istringstream lines(readFile(logPath));
    const std::string start = word + '\t';
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, start.size(), start) == 0) facts.push_back(line.substr(start.size()));
    }
    return facts;
}

}  // namespace rgen_test
