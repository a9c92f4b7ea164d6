// rgen --version: the versions of rgen and of the loaded library.
//
// SPDX-License-Identifier: MIT
#include "base/host_system.h"
#include "base/rgen_version.h"
#include "commands/commands.h"

namespace cli {

ExitCode runVersion(const Arguments& arguments, JsonDocument& document) {
    const LoadedLibrary library = loadedLibrary();
    document.set("rgen", rgenVersion());
    document.set("library", library.version);
    document.set("path", library.path);
    if (arguments.json) return ExitCode::Done;
    printLines("rgen " + rgenVersion() + "\nstrata_repgenlib " + library.version + " (" +
               library.path + ")\n");
    return ExitCode::Done;
}

}  // namespace cli
