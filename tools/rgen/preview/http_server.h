// The HTTP server of the preview. It listens on 127.0.0.1 only and refuses everything but GET and
// HEAD, requests for another host, and requests without the token. Its source is the only one that
// knows cpp-httplib.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "preview/change_feed.h"

namespace cli {

struct HttpRequest {
    /// After the token: "", "view", "files/logo.png".
    std::string path;
    std::map<std::string, std::string> query;
    /// A header that other pages cannot send says that the preview's own script asks.
    bool isFromScript = false;
};

struct HttpResponse {
    int status = 200;
    std::string contentType = "text/plain; charset=utf-8";
    std::string body;
    /// The Content-Security-Policy; without one nothing is allowed.
    std::string policy;
    /// Sends a line for each change of a file until the browser closes the connection.
    bool isEventStream = false;
};

class HttpServer {
public:
    /// Called on several threads at once.
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    /// Listens; port 0 is any free one. Throws a CommandError when the port is in use.
    HttpServer(int port, Handler handler, ChangeFeed& changes);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// "http://127.0.0.1:40123/0123456789abcdef0123456789abcdef/".
    std::string address() const;

    /// Answers until stop() is called.
    void run();
    void stop();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace cli
