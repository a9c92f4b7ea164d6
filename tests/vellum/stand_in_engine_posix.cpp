// The stand-in engine on Linux. Reads the arguments from /proc, so that main has no parameters on
// both systems.
//
// SPDX-License-Identifier: MIT
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "vellum/stand_in_engine.h"

namespace stand_in_engine {

namespace {

constexpr unsigned longestLife = 60;

}  // namespace

std::vector<std::string> arguments() {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::vector<std::string> words;
    for (std::string word; std::getline(file, word, '\0');) {
        words.push_back(word);
    }
    return words;
}

std::string variable(const std::string& name) {
    const char* text = std::getenv(name.c_str());
    return text == nullptr ? std::string() : std::string(text);
}

void startCopy(const std::string& argument) {
    if (fork() != 0) return;
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    execl(self.c_str(), self.c_str(), argument.c_str(), static_cast<char*>(nullptr));
    _exit(EXIT_FAILURE);
}

void hang(const std::string& markPath) {
    // SIGALRM ends the process.
    alarm(longestLife);
    if (!markPath.empty()) std::ofstream(markPath, std::ios::binary) << getpid();
    for (;;) {
        pause();
    }
}

}  // namespace stand_in_engine
