// A program that replaces the external converter "vellum" in tests. It runs the commands of a
// control file, whose path is in the environment variable STAND_IN_CONTROL. Without a control
// file it does nothing and succeeds.
//
// The control file holds one command a line, a word and its arguments separated by tabs. In every
// argument "%pid%" is replaced by the number of the process.
//
//   log FILE           writes how the process was started; the file appears when it is complete
//   mark FILE          makes an empty file, so that a test sees how far the program has come
//   await FILE         waits until the file exists, at most as long as longestWait
//   write FILE TEXT    writes the text
//   say TEXT           writes the text and a line end to standard error
//   hold FILE TEXT     writes the text and keeps the file open until the program ends
//   read FILE          opens the file and keeps it open until the program ends
//   copy FROM TO       copies the bytes of a file
//   background FILE    obeys another control file in a process that outlives this one
//   ignore-signals     ignores every signal that can be ignored (Linux; else does nothing)
//   crash              ends by a memory fault
//   exit CODE          ends with that exit code
//
// SPDX-License-Identifier: MIT
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <list>
#include <sstream>
#include <thread>
#include <vector>

#include "support/test_platform.h"

namespace {

using Command = std::vector<std::string>;

constexpr const char* controlVariable = "STAND_IN_CONTROL";

// Limits every wait, so that no process stays when a test fails.
constexpr std::chrono::seconds longestWait{60};

constexpr int exitOfUnknownCommand = 96;
constexpr int exitOfEndlessWait = 97;

std::filesystem::path nativePath(const std::string& text) {
    return std::filesystem::u8path(text);
}

std::string withProcessNumber(std::string text) {
    const std::string variable = "%pid%";
    for (std::size_t at = text.find(variable); at != std::string::npos; at = text.find(variable)) {
        text.replace(at, variable.size(), std::to_string(rgen_test::processNumber()));
    }
    return text;
}

std::vector<Command> readCommands(const std::string& controlPath) {
    std::ifstream file(nativePath(controlPath), std::ios::binary);
    std::vector<Command> commands;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        Command command;
        for (std::string field; std::getline(fields, field, '\t');) {
            command.push_back(withProcessNumber(field));
        }
        command.resize(3);
        commands.push_back(command);
    }
    return commands;
}

void writeLog(const std::string& path) {
    const std::string unfinished = path + ".unfinished";
    {
        std::ofstream file(nativePath(unfinished), std::ios::binary);
        rgen_test::describeProcess(file);
    }
    std::filesystem::rename(nativePath(unfinished), nativePath(path));
}

void writeText(const std::string& path, const std::string& text) {
    std::ofstream(nativePath(path), std::ios::binary) << text;
}

void copyFile(const std::string& from, const std::string& to) {
    std::filesystem::copy_file(nativePath(from), nativePath(to),
                               std::filesystem::copy_options::overwrite_existing);
}

bool waitUntilExists(const std::string& path) {
    const auto limit = std::chrono::steady_clock::now() + longestWait;
    while (!std::filesystem::exists(nativePath(path))) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

// Obeys one command that may end the program; returns whether the next one is to be obeyed.
bool obeyCommand(const Command& command, std::list<std::fstream>& openFiles, int& exitCode) {
    const std::string& word = command[0];
    if (word == "log") {
        writeLog(command[1]);
    } else if (word == "say") {
        std::fputs((command[1] + "\n").c_str(), stderr);
    } else if (word == "mark") {
        writeText(command[1], "");
    } else if (word == "write") {
        writeText(command[1], command[2]);
    } else if (word == "hold") {
        openFiles.emplace_back(nativePath(command[1]), std::ios::binary | std::ios::out);
        openFiles.back() << command[2] << std::flush;
    } else if (word == "read") {
        openFiles.emplace_back(nativePath(command[1]), std::ios::binary | std::ios::in);
    } else if (word == "copy") {
        copyFile(command[1], command[2]);
    } else if (word == "background") {
        rgen_test::setEnvironmentText(controlVariable, command[1]);
        rgen_test::startThisProgramAgain();
    } else if (word == "await") {
        exitCode = waitUntilExists(command[1]) ? EXIT_SUCCESS : exitOfEndlessWait;
    } else if (word == "ignore-signals") {
        rgen_test::ignoreSignals();
    } else if (word == "crash") {
        rgen_test::crash();
    } else {
        exitCode = word == "exit" ? std::atoi(command[1].c_str()) : exitOfUnknownCommand;
        return false;
    }
    return exitCode == EXIT_SUCCESS;
}

int obey(const std::string& controlPath) {
    std::list<std::fstream> openFiles;
    int exitCode = EXIT_SUCCESS;
    for (const Command& command : readCommands(controlPath)) {
        if (!obeyCommand(command, openFiles, exitCode)) break;
    }
    return exitCode;
}

}  // namespace

int main() {
    const std::string controlPath = rgen_test::environmentText(controlVariable);
    return controlPath.empty() ? EXIT_SUCCESS : obey(controlPath);
}
