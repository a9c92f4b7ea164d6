// SPDX-License-Identifier: MIT
#include "support/host_state.h"

#include <cfenv>
#include <chrono>
#include <clocale>
#include <filesystem>
#include <locale>
#include <thread>

#include "support/test_platform.h"

namespace rgen_test {

std::string hostState() {
    return "current folder: " + std::filesystem::current_path().u8string() +
           "\nC locale: " + std::setlocale(LC_ALL, nullptr) +
           "\nC++ locale: " + std::locale().name() +
           "\nrounding mode: " + std::to_string(std::fegetround()) + "\n" + systemState();
}

std::string settledHostState(const std::string& expected) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    std::string state = hostState();
    while (state != expected && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
        state = hostState();
    }
    return state;
}

}  // namespace rgen_test
