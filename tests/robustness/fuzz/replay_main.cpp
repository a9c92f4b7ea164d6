// Runs the stored inputs of all targets: what the fuzzing engine starts from (seeds) and whatever
// failed once (found). It needs no fuzzing engine, so it is built with every compiler and for every
// system. Usage: fuzz_replay FOLDER [TARGET [FILE...]] FOLDER holds seeds/TARGET and found/TARGET.
// With files it runs these alone.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz_targets.h"

namespace {

namespace fs = std::filesystem;

struct Target {
    const char* name;
    void (*run)(const std::string& input);
};

constexpr Target targets[] = {
    {"config", rgen_fuzz::fuzzConfig},
    {"persistent", rgen_fuzz::fuzzPersistent},
    {"simulation", rgen_fuzz::fuzzSimulation},
    {"values", rgen_fuzz::fuzzValues},
    {"template", rgen_fuzz::fuzzTemplate},
    {"markers", rgen_fuzz::fuzzMarkers},
    {"byte_dump", rgen_fuzz::fuzzByteDump},
    {"guid", rgen_fuzz::fuzzGuid},
    {"path", rgen_fuzz::fuzzPath},
    {"calls", rgen_fuzz::fuzzCalls},
};

std::vector<fs::path> filesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    if (!fs::is_directory(folder)) return files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// The name is printed first: an input that fails ends the program.
void runFile(const Target& target, const fs::path& file) {
    std::printf("%s: %s\n", target.name, file.filename().u8string().c_str());
    std::fflush(stdout);
    std::ifstream stream(file, std::ios::binary);
    const std::string input{std::istreambuf_iterator<char>(stream),
                            std::istreambuf_iterator<char>()};
    target.run(input);
}

void runFiles(const Target& target, const std::vector<fs::path>& files) {
    for (const fs::path& file : files)
        runFile(target, file);
}

// False when there is no seed: then something is wrong with the folder.
bool runStored(const Target& target, const fs::path& folder) {
    const std::vector<fs::path> seeds = filesIn(folder / "seeds" / target.name);
    const std::vector<fs::path> found = filesIn(folder / "found" / target.name);
    runFiles(target, seeds);
    runFiles(target, found);
    std::printf("%s: %zu seeds, %zu found inputs\n", target.name, seeds.size(), found.size());
    return !seeds.empty();
}

bool isWanted(const Target& target, const std::vector<std::string>& arguments) {
    return arguments.size() < 2 || arguments[1] == target.name;
}

// The targets make another folder the current one, so the paths are made absolute first.
std::vector<fs::path> namedFiles(const std::vector<std::string>& arguments) {
    std::vector<fs::path> files;
    for (std::size_t i = 2; i < arguments.size(); ++i)
        files.push_back(fs::absolute(fs::u8path(arguments[i])));
    return files;
}

int replay(const std::vector<std::string>& arguments) {
    const fs::path folder = fs::absolute(fs::u8path(arguments[0]));
    const std::vector<fs::path> files = namedFiles(arguments);
    int ran = 0;
    for (const Target& target : targets) {
        if (!isWanted(target, arguments)) continue;
        ++ran;
        if (!files.empty()) {
            runFiles(target, files);
        } else if (!runStored(target, folder)) {
            std::printf("%s has no seeds\n", target.name);
            return 1;
        }
    }
    std::puts(ran > 0 ? "all tests ran to the end" : "there is no such target");
    return ran > 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::puts("usage: fuzz_replay FOLDER [TARGET [FILE...]]");
        return 1;
    }
    return replay(std::vector<std::string>(argv + 1, argv + argc));
}
