// A program with two hosts in it: plug-ins, each with its own generators and, where the system
// allows it, its own C++ runtime. Arguments: the folder, the files of the plug-ins.
//
// SPDX-License-Identifier: MIT
#include <cstdio>
#include <string>
#include <thread>

#include "support/test_platform.h"

namespace rgen_test {
namespace {

using Meet = const char* (*)(const char*);

// A C++ runtime that is part of a plug-in does not free its reserve for exceptions at the end.
void* loadWithRuntime(const char* path) {
    const IgnoredLeaks ignored;
    return loadLibrary(path);
}

class PlugIn {
public:
    PlugIn(const char* path, const char* folder)
        : library_(loadWithRuntime(path)), folder_(folder) {
        if (library_ == nullptr) problem_ = path + (": " + lastLoadError());
    }

    void meetFailures() {
        if (!problem_.empty()) return;
        const auto meet = reinterpret_cast<Meet>(findSymbol(library_, "meet_failures_of_plug_in"));
        const char* const problem = meet == nullptr ? "the function is missing" : meet(folder_);
        if (problem != nullptr) problem_ = problem;
    }

    void unload() {
        if (problem_.empty() && !unloadLibrary(library_)) problem_ = "cannot be unloaded";
    }

    const std::string& problem() const { return problem_; }

private:
    void* library_;
    const char* folder_;
    std::string problem_;
};

// The hosts work at the same time; then one of them goes, and the other one works on.
std::string meetFailuresOfBoth(const char* folder, const char* firstPath, const char* secondPath) {
    PlugIn first(firstPath, folder);
    PlugIn second(secondPath, folder);
    for (int round = 0; round < 5; ++round) {
        std::thread thread([&] { first.meetFailures(); });
        second.meetFailures();
        thread.join();
    }
    first.unload();
    second.meetFailures();
    second.unload();
    return first.problem() + second.problem();
}

}  // namespace
}  // namespace rgen_test

int main(int count, char** arguments) {
    if (count != 4) return 2;
    const std::string problem =
        rgen_test::meetFailuresOfBoth(arguments[1], arguments[2], arguments[3]);
    if (!problem.empty()) std::fprintf(stderr, "%s\n", problem.c_str());
    return problem.empty() ? 0 : 1;
}
