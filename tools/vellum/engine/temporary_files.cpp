// The part that is the same on both systems.
//
// SPDX-License-Identifier: MIT
#include "engine/temporary_files.h"

#include <chrono>
#include <random>
#include <system_error>
#include <thread>

namespace vellum {

namespace fs = std::filesystem;

std::string randomLetters() {
    constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device source;
    std::uniform_int_distribution<std::size_t> place(0, sizeof letters - 2);
    std::string text(16, ' ');
    for (char& letter : text)
        letter = letters[place(source)];
    return text;
}

// The guardian learns the name before the folder exists, so that there is no moment without it.
TemporaryFolder::TemporaryFolder(tools::Guardian& guardian)
    : path_(fs::temp_directory_path() / ("vellum-" + randomLetters())) {
    guardian.watch(path_);
    createPrivateFolder(path_);
}

TemporaryFolder::~TemporaryFolder() {
    // On Windows a program that was just ended may keep a file open for a moment.
    constexpr std::chrono::milliseconds pause{20};
    std::error_code failure;
    for (int round = 0; round < 25; ++round) {
        fs::remove_all(path_, failure);
        if (!failure) return;
        std::this_thread::sleep_for(pause);
    }
}

}  // namespace vellum
