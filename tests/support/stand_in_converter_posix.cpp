// The stand-in converter on Linux. It reads its arguments from /proc, so that main needs no
// parameters.
//
// SPDX-License-Identifier: MIT
#include "support/stand_in_converter.h"

#include <dirent.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

namespace stand_in {

namespace {

void describeArguments(std::ostream& out) {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    for (std::string argument; std::getline(file, argument, '\0');) {
        out << "argument\t" << argument << '\n';
    }
}

void describeSignals(std::ostream& out) {
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("SigBlk:", 0) == 0 || line.rfind("SigIgn:", 0) == 0) out << line << '\n';
    }
}

// Lists the open descriptors, except the one that the listing itself and the log file use.
std::map<int, std::string> inheritedDescriptors() {
    std::map<int, std::string> descriptors;
    DIR* directory = opendir("/proc/self/fd");
    if (directory == nullptr) return descriptors;
    while (const dirent* entry = readdir(directory)) {
        if (entry->d_name[0] == '.') continue;
        const int number = std::atoi(entry->d_name);
        if (number == dirfd(directory)) continue;
        std::error_code ignored;
        const auto target = std::filesystem::read_symlink(
            std::filesystem::path("/proc/self/fd") / entry->d_name, ignored);
        const std::string text = target.string();
        if (text.find(".unfinished") == std::string::npos) descriptors[number] = text;
    }
    closedir(directory);
    return descriptors;
}

}  // namespace

std::string controlFilePath() {
    const char* path = std::getenv("STAND_IN_CONTROL");
    return path == nullptr ? std::string() : std::string(path);
}

unsigned long processNumber() {
    return static_cast<unsigned long>(getpid());
}

void describeProcess(std::ostream& out) {
    describeArguments(out);
    out << "directory\t" << std::filesystem::current_path().string() << '\n';
    for (const auto& [number, target] : inheritedDescriptors()) {
        out << "descriptor\t" << number << '\t' << target << '\n';
    }
    describeSignals(out);
    out << "session\t" << (getsid(0) == getpid() ? "own" : "inherited") << '\n';
}

void crash() {
    const rlimit noCoreFile = {0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    signal(SIGSEGV, SIG_DFL);
    raise(SIGSEGV);
    std::abort();
}

void ignoreSignals() {
    for (int number = 1; number < NSIG; ++number)
        signal(number, SIG_IGN);
}

void obeyInBackground(const std::string& controlPath) {
    if (fork() == 0) _exit(obey(controlPath));
}

}  // namespace stand_in
