// The external converter: its command line and the wait for it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "report_generator.h"
#include "status.h"
#include "sync/cancellation.h"

namespace rgen {

/// The converter's command line. Each text is enclosed in double quotes, without escaping.
std::string converterCommandLine(const std::string& htmlPath, const std::string& converterBaseArg,
                                 const std::string& outputPath);

/// Runs a program and waits for its end without a time limit, checking the token once a second.
/// Returns RGEN_CANCELED if the token is set; the program then continues to run. Other failures:
/// RGEN_E_RUN_EXTERNAL, RGEN_E_EXTERNAL_FAILED. Throws std::range_error for a command line that is
/// not valid UTF-8. The generator is not used, no lock is taken.
Status runExternalProgram(ReportGenerator& generator, const std::string& commandLine,
                          const sync::CancellationToken& token);

}  // namespace rgen
