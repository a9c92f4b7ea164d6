// What the paths of the preview answer: the page itself, views, reports and their files, places.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "preview/http_server.h"
#include "preview/report_preview.h"

namespace cli {

class PreviewRoutes {
public:
    /// `interrupted` is called when Ctrl-C was pressed while a report was made.
    PreviewRoutes(const PreviewSettings& settings, ReportPreview& preview,
                  std::function<void()> interrupted);

    HttpResponse answer(const HttpRequest& request);

private:
    HttpResponse route(const HttpRequest& request);
    HttpResponse report(const HttpRequest& request);
    HttpResponse place(const HttpRequest& request);
    HttpResponse pdf(const HttpRequest& request);

    const PreviewSettings& settings_;
    ReportPreview& preview_;
    std::function<void()> interrupted_;
};

}  // namespace cli
