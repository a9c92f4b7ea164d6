// The external converter "vellum". The system finds it by its usual search for programs; the
// library supplies no folder.
//
// SPDX-License-Identifier: MIT
#include "generate/external_converter.h"

#include <cstdint>

#include "platform/platform.h"

namespace rgen {
namespace {

constexpr std::uint32_t waitSliceMilliseconds = 1000;

/// On purpose: quotes inside the text stay as they are.
std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

}  // namespace

std::string converterCommandLine(const std::string& htmlPath, const std::string& converterBaseArg,
                                 const std::string& outputPath) {
    return "vellum -i " + quoted(htmlPath) + " -b " + quoted(converterBaseArg) + " -t html -o " +
           quoted(outputPath);
}

Status runExternalProgram(ReportGenerator& /*generator*/, const std::string& commandLine,
                          const sync::CancellationToken& token) {
    platform::ChildProcess process(commandLine);
    if (!process.started()) return RGEN_E_RUN_EXTERNAL;
    while (process.waitTimedOut(waitSliceMilliseconds)) {
        if (token.isCancellationRequested()) return RGEN_CANCELED;
    }
    std::uint32_t exitCode = 0;
    // On purpose: the exit code must be known, but its value is not examined.
    return process.queryExitCode(exitCode) ? RGEN_OK : RGEN_E_EXTERNAL_FAILED;
}

}  // namespace rgen
