// SPDX-License-Identifier: MIT
#include "report/converter.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <system_error>

#include "base/interruption.h"
#include "base/safe_files.h"
#include "process/child_process.h"
#include "process/this_process.h"

namespace cli {
namespace {

constexpr std::chrono::milliseconds pause{50};
/// Time for a cancelled converter to end its engine and remove its files.
constexpr std::chrono::seconds longestFarewell{10};

constexpr const char* notFound =
    "the program \"vellum\" was not found on the search path: install it beside rgen or on "
    "PATH, or give --no-convert";

std::unique_ptr<tools::ChildProcess> start(const std::filesystem::path& program,
                                           const Conversion& conversion) {
    tools::ProcessRequest request;
    request.program = program;
    request.arguments = {"-i", conversion.page, "-b", conversion.base,
                         "-t", "html",          "-o", conversion.output};
    request.outputFile = std::filesystem::u8path(conversion.said);
    return std::make_unique<tools::ChildProcess>(request);
}

void await(tools::ChildProcess& converter, const Conversion& conversion) {
    while (!converter.wait(pause)) {
        if (!isInterrupted()) continue;
        std::error_code ignored;
        std::filesystem::remove(std::filesystem::u8path(conversion.page), ignored);
        converter.wait(longestFarewell);
        break;
    }
    throwIfInterrupted();
}

}  // namespace

std::string runConverter(const Conversion& conversion) {
    const auto program = tools::findProgram("vellum");
    if (!program) return notFound;
    const OwnerRights rights;
    std::unique_ptr<tools::ChildProcess> converter;
    try {
        converter = start(*program, conversion);
    } catch (const std::system_error& error) {
        return "\"" + program->u8string() + "\" cannot be started: " + error.code().message() +
               " (" + std::to_string(error.code().value()) + ")";
    }
    await(*converter, conversion);
    return {};
}

}  // namespace cli
