// The external converter "vellum". It is found by the system's search for programs; the library
// specifies no folder.
//
// SPDX-License-Identifier: MIT
#include "generate/external_converter.h"

#include <cstdint>

#include "platform/child_process.h"

namespace rgen {
namespace {

constexpr std::uint32_t waitIntervalMilliseconds = 1000;

/// On purpose: quotes inside the text are not escaped.
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
    while (process.waitTimedOut(waitIntervalMilliseconds)) {
        if (token.isCancellationRequested()) return RGEN_CANCELED;
    }
    std::uint32_t exitCode = 0;
    // On purpose: the query must succeed, but the exit code itself is ignored.
    return process.queryExitCode(exitCode) ? RGEN_OK : RGEN_E_EXTERNAL_FAILED;
}

}  // namespace rgen
