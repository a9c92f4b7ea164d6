// rgen preview: a report in the browser that follows the files it is made from.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <memory>

#include "base/interruption.h"
#include "commands/commands.h"
#include "preview/change_watch.h"
#include "preview/desktop.h"
#include "preview/editor_command.h"
#include "preview/preview_routes.h"

namespace cli {
namespace {

constexpr int highestPort = 65535;

int portOf(const std::string& text) {
    if (text.empty()) return 0;
    constexpr std::size_t mostDigits = 5;
    const bool isNumber =
        text.size() <= mostDigits && text.find_first_not_of("0123456789") == std::string::npos;
    const int port = isNumber ? std::stoi(text) : 0;
    if (port > 0 && port <= highestPort) return port;
    throw usageErrorOf("preview", "\"" + text + "\" is not a port",
                       "give a number from 1 to 65535, or leave --port out");
}

PreviewSettings settingsOf(const Arguments& arguments) {
    PreviewSettings settings;
    settings.directory = openDataDirectory(arguments.dataDir);
    settings.type = arguments.type;
    settings.values = arguments.values;
    settings.base =
        arguments.report.base.empty() ? settings.directory.folder : arguments.report.base;
    settings.editor = arguments.preview.editor;
    const std::vector<std::string>& data = settings.values.data;
    if (std::count(data.begin(), data.end(), "-") > 0) {
        throw usageErrorOf("preview", "--data - can be read once only", "name a file");
    }
    if (!settings.editor.empty()) commandWords(settings.editor);
    return settings;
}

/// With --json the document is printed now: the command ends by Ctrl-C.
void announce(const std::string& address, const Arguments& arguments, Console& console,
              JsonDocument& document) {
    document.set("address", address);
    printData(arguments.json ? document.text() : address + "\n");
    console.say("preview at this address; Ctrl-C ends it");
}

}  // namespace

ExitCode runPreview(const Arguments& arguments, Console& console, JsonDocument& document) {
    const PreviewSettings settings = settingsOf(arguments);
    const int port = portOf(arguments.preview.port);
    ReportPreview preview(settings);
    ChangeFeed changes;
    HttpServer* running = nullptr;
    PreviewRoutes routes(settings, preview, [&running] { running->stop(); });
    HttpServer server(
        port, [&routes](const HttpRequest& request) { return routes.answer(request); }, changes);
    running = &server;
    const ChangeWatch watch([&preview] { return preview.involvedFiles(); },
                            [&changes] { changes.announce(); });
    announce(server.address(), arguments, console, document);
    if (arguments.preview.open) openInBrowser(server.address());
    server.run();
    throwIfInterrupted();
    throw CommandError(ExitCode::Environment,
                       "the preview has ended: the system has closed its port", "start it again");
}

}  // namespace cli
