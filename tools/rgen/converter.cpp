// Starts and watches the converter.
//
// SPDX-License-Identifier: MIT
#include "converter.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <system_error>

#include "child_process.h"
#include "interruption.h"

namespace cli {
namespace {

constexpr std::chrono::milliseconds pause{50};
/// So long a cancelled converter has to end its engine and to remove its files.
constexpr std::chrono::seconds longestFarewell{10};

std::unique_ptr<tools::ChildProcess> start(const Conversion& conversion) {
    const auto program = tools::findProgram("vellum");
    if (!program) return nullptr;
    tools::ProcessRequest request;
    request.program = *program;
    request.arguments = {"-i", conversion.page, "-b", conversion.base,
                         "-t", "html",          "-o", conversion.output};
    request.outputFile = std::filesystem::u8path(conversion.said);
    try {
        return std::make_unique<tools::ChildProcess>(request);
    } catch (const std::system_error&) {
        return nullptr;
    }
}

}  // namespace

bool runConverter(const Conversion& conversion) {
    const std::unique_ptr<tools::ChildProcess> converter = start(conversion);
    if (!converter) return false;
    while (!converter->wait(pause)) {
        if (!isInterrupted()) continue;
        std::error_code ignored;
        std::filesystem::remove(std::filesystem::u8path(conversion.page), ignored);
        converter->wait(longestFarewell);
        break;
    }
    throwIfInterrupted();
    return true;
}

}  // namespace cli
