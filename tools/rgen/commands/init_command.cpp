// rgen init: writes a working data directory from files that are embedded in the program.
//
// SPDX-License-Identifier: MIT
#include "base/paths.h"
#include "commands/commands.h"
#include "commands/embedded_files.h"
#include "commands/new_files.h"
#include "data/report_type.h"

namespace cli {
ExitCode runInit(const Arguments& arguments, Console& console, JsonDocument& document) {
    const DataDirectory directory = namedDataDirectory(arguments.operands.front());
    const std::string& folder = directory.folder;
    std::vector<std::string> paths;
    for (const EmbeddedFile& file : acquisitionSample()) {
        paths.push_back(joinedPath(folder, std::string(file.path)));
        requireAbsent(paths.back());
    }
    NewFiles files;
    std::size_t next = 0;
    for (const EmbeddedFile& file : acquisitionSample())
        files.write(paths[next++], file.content);
    files.keep();

    const std::string at = " -d " + commandArgument(folder);
    const auto inside = [&folder](const char* name) {
        return commandArgument(joinedPath(folder, name));
    };
    const std::vector<std::string> commands = {
        "rgen persist set" + at + " --data " + inside("acquisition-lab.json"),
        "rgen report" + at + " --data " + inside("acquisition.json") + " -o report.html",
        "rgen report" + at + " --data " + inside("acquisition.json") + " -o bericht.html --lang de",
    };
    document.set("folder", folder);
    document.set("files", paths);
    document.set("next", commands);
    if (arguments.json) return ExitCode::Done;
    for (const std::string& path : paths)
        printLines(path + "\n");
    console.say("made a data directory with the report type acquisition; next:");
    for (const std::string& command : commands)
        console.say("  " + command);
    return ExitCode::Done;
}

}  // namespace cli
