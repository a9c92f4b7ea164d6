// rgen --version: the versions of rgen and of the loaded libraries.
//
// SPDX-License-Identifier: MIT
#include "base/rgen_version.h"
#include "commands/commands.h"
#include "library/library_calls.h"

namespace cli {

ExitCode runVersion(const Arguments& arguments, JsonDocument& document) {
    const RgenhVersions loaded = loadedLibraries();
    document.set("rgen", rgenVersion());
    document.set("library", loaded.library);
    document.set("path", loaded.libraryPath);
    document.set("host", loaded.host);
    document.set("hostPath", loaded.hostPath);
    if (arguments.json) return ExitCode::Done;
    printLines("rgen " + rgenVersion() + "\nstrata_repgenlib " + loaded.library + " (" +
               loaded.libraryPath + ")\nstrata_repgenlib_host " + loaded.host + " (" +
               loaded.hostPath + ")\n");
    return ExitCode::Done;
}

}  // namespace cli
