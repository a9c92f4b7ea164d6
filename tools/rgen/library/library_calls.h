// What rgen adds to the C++ header: failures as CommandErrors, and texts as the library returns
// them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/command_error.h"
#include "strata_repgenlib/rgen.hpp"
#include "values/value.h"

namespace cli {

/// Throws a CommandError when the folder does not exist.
void setDataDir(repgen::Generator& generator, const std::string& folder);

/// The persistent data of a report type; its texts are XML content. `status` says why there is
/// none.
std::vector<Value> persistentValues(const repgen::Generator& generator, const repgen::Guid& type,
                                    RgenStatus& status);

/// The values that the library reads from a simulated input file, none when it reads none; their
/// texts are XML content.
std::vector<Value> simulatedValues(const repgen::Generator& generator, const std::string& path);

/// The libraries that this process has loaded.
RgenhVersions loadedLibraries();

/// "0xC0000009".
std::string statusHex(RgenStatus status);
/// "0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND".
std::string statusWord(RgenStatus status);
/// "Template is not found in folder (0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND)".
std::string statusSentence(RgenStatus status);

/// A status that the library reported about `subject`.
CommandError statusFailure(const std::string& subject, RgenStatus status, const std::string& hint);

}  // namespace cli
