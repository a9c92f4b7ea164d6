// SPDX-License-Identifier: MIT
#include "preview/preview_routes.h"

#include <algorithm>

#include "base/command_error.h"
#include "base/console.h"
#include "preview/desktop.h"
#include "preview/editor_command.h"
#include "preview/page_files.h"
#include "preview/shown_files.h"

namespace cli {
namespace {

/// The preview's own page: its files and nothing else.
constexpr const char* pagePolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; frame-src "
    "'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

/// A report: what vellum lets a report do, with the files of the preview for those of the disk.
/// Nothing in it runs; "allow-same-origin" lets the preview's script read the line marks.
constexpr const char* reportPolicy =
    "default-src 'none'; style-src 'unsafe-inline' 'self' data:; img-src 'self' data:; "
    "font-src 'self' data:; base-uri 'self'; form-action 'none'; frame-ancestors 'self'; "
    "sandbox allow-same-origin";

constexpr std::string_view filesFolder = "files/";

std::string valueOf(const HttpRequest& request, const char* name) {
    const auto found = request.query.find(name);
    return found == request.query.end() ? std::string() : found->second;
}

/// 0 for anything but a positive number.
std::uint64_t numberOf(const HttpRequest& request, const char* name) {
    constexpr std::size_t longest = 9;
    const std::string text = valueOf(request, name);
    const bool isNumber = !text.empty() && text.size() <= longest &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::stoull(text) : 0;
}

WantedView viewOf(const HttpRequest& request) {
    return {valueOf(request, "format"), valueOf(request, "lang"), valueOf(request, "data")};
}

HttpResponse nothing() {
    HttpResponse response;
    response.status = 404;
    response.body = "there is nothing here\n";
    return response;
}

HttpResponse json(const JsonDocument& document) {
    HttpResponse response;
    response.contentType = "application/json";
    response.body = document.text();
    return response;
}

HttpResponse failed(const CommandError& error) {
    JsonDocument document;
    document.set("ok", false);
    document.set("message", errorText(error));
    return json(document);
}

HttpResponse pageFile(const std::string& name) {
    for (const EmbeddedFile& file : previewPage()) {
        if (file.path != (name.empty() ? "index.html" : name)) continue;
        HttpResponse response;
        const std::string ending = name.substr(std::min(name.rfind('.'), name.size()));
        response.contentType = ending == ".js"    ? "text/javascript"
                               : ending == ".css" ? "text/css"
                                                  : "text/html";
        response.contentType += "; charset=utf-8";
        response.body = file.content;
        response.policy = pagePolicy;
        return response;
    }
    return nothing();
}

}  // namespace

PreviewRoutes::PreviewRoutes(const PreviewSettings& settings, ReportPreview& preview,
                             std::function<void()> interrupted)
    : settings_(settings), preview_(preview), interrupted_(std::move(interrupted)) {}

HttpResponse PreviewRoutes::answer(const HttpRequest& request) {
    try {
        return route(request);
    } catch (const CommandError& error) {
        if (error.exitCode == ExitCode::Interrupted) interrupted_();
        return failed(error);
    }
}

HttpResponse PreviewRoutes::route(const HttpRequest& request) {
    if (request.path == "view") return json(preview_.view(viewOf(request)));
    if (request.path == "place") return place(request);
    if (request.path == "pdf") return pdf(request);
    if (request.path == "events") {
        HttpResponse events;
        events.isEventStream = true;
        return events;
    }
    if (request.path.compare(0, filesFolder.size(), filesFolder) == 0) return report(request);
    return pageFile(request.path);
}

/// Reports are in the folder of the files, so that their relative links work.
HttpResponse PreviewRoutes::report(const HttpRequest& request) {
    HttpResponse response;
    response.policy = reportPolicy;
    const std::string link = request.path.substr(filesFolder.size());
    if (link.empty()) {
        const auto page = preview_.page(numberOf(request, "page"));
        if (!page) return nothing();
        response.contentType = page->contentType;
        response.body = page->bytes;
        return response;
    }
    const auto file = findShownFile({settings_.base, settings_.directory.folder}, link);
    if (!file) return nothing();
    response.contentType = file->contentType;
    response.body = preview_.readShownFile(file->path);
    return response;
}

/// Only the preview's own script may open the editor, no link or image of a report.
HttpResponse PreviewRoutes::place(const HttpRequest& request) {
    const TemplatePlace wanted = {valueOf(request, "format"), numberOf(request, "line"),
                                  numberOf(request, "column")};
    if (wanted.line == 0 || wanted.column == 0) return nothing();
    JsonDocument document = preview_.describe(wanted);
    const bool opens = valueOf(request, "open") == "1" && !settings_.editor.empty();
    if (opens && request.isFromScript) {
        startProgram(editorWords(settings_.editor, preview_.templateFile(wanted.format),
                                 wanted.line, wanted.column));
    }
    document.set("ok", true);
    return json(document);
}

HttpResponse PreviewRoutes::pdf(const HttpRequest& request) {
    HttpResponse response;
    try {
        response.body = preview_.pdf(viewOf(request));
        response.contentType = "application/pdf";
    } catch (const CommandError& error) {
        if (error.exitCode == ExitCode::Interrupted) throw;
        response.status = 500;
        response.body = errorText(error) + "\n";
    }
    return response;
}

}  // namespace cli
