// rgen --version: the version that rgen was built as, and what the loaded library says of itself.
//
// SPDX-License-Identifier: MIT
#include "base/host_system.h"
#include "base/rgen_version.h"
#include "commands/commands.h"

namespace cli {

std::string ownVersion() {
    return std::to_string(RGEN_VERSION_MAJOR) + "." + std::to_string(RGEN_VERSION_MINOR) + "." +
           std::to_string(RGEN_VERSION_PATCH);
}

ExitCode runVersion(const Arguments& arguments, JsonDocument& document) {
    const LoadedLibrary library = loadedLibrary();
    document.set("rgen", ownVersion());
    document.set("library", library.version);
    document.set("path", library.path);
    if (arguments.json) return ExitCode::Done;
    printLines("rgen " + ownVersion() + "\nstrata_repgenlib " + library.version + " (" +
               library.path + ")\n");
    return ExitCode::Done;
}

}  // namespace cli
