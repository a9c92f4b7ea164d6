// The host's state on Linux.
//
// SPDX-License-Identifier: MIT
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/host_state.h"

namespace rgen_test {
namespace {

// The names in a folder of the process's own that the system makes up.
std::vector<std::string> namesOf(const char* folder) {
    std::vector<std::string> names;
    DIR* directory = opendir(folder);
    if (directory == nullptr) return names;
    const std::string own = std::to_string(dirfd(directory));
    while (const dirent* entry = readdir(directory)) {
        if (entry->d_name[0] != '.' && entry->d_name != own) names.emplace_back(entry->d_name);
    }
    closedir(directory);
    std::sort(names.begin(), names.end());
    return names;
}

// The open descriptors, apart from those that watch abandoned converters until these are reaped.
std::vector<std::string> openDescriptors() {
    std::vector<std::string> numbers = namesOf("/proc/self/fd");
    const auto watches = [](const std::string& number) {
        char target[64] = {};
        const std::string link = "/proc/self/fd/" + number;
        return readlink(link.c_str(), target, sizeof target - 1) > 0 &&
               std::string(target) == "anon_inode:[pidfd]";
    };
    numbers.erase(std::remove_if(numbers.begin(), numbers.end(), watches), numbers.end());
    return numbers;
}

std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string result;
    for (const std::string& text : texts)
        result += separator + text;
    return result;
}

std::string signalState() {
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    std::string handled;
    std::string held;
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) != 0) continue;
        const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
        if (action.sa_handler != SIG_DFL)
            handled += " " + std::to_string(number) + "=" + std::to_string(handler);
        if (sigismember(&blocked, number) == 1) held += " " + std::to_string(number);
    }
    return "handled signals:" + handled + "\nblocked signals:" + held + "\n";
}

std::string fileModeMask() {
    const mode_t mask = umask(0);
    umask(mask);
    return "file mode mask: " + std::to_string(mask) + "\n";
}

std::string environment() {
    std::vector<std::string> texts;
    for (char** text = environ; *text != nullptr; ++text)
        texts.emplace_back(*text);
    std::sort(texts.begin(), texts.end());
    return "environment: " + std::to_string(std::hash<std::string>()(joined(texts, "\n"))) + "\n";
}

}  // namespace

std::string systemState() {
    return "threads: " + std::to_string(namesOf("/proc/self/task").size()) + "\n" +
           "descriptors:" + joined(openDescriptors(), " ") + "\n" + signalState() + fileModeMask() +
           environment();
}

}  // namespace rgen_test
