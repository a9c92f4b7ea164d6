// Every request is answered in the handler that cpp-httplib calls before it looks for a route: its
// routes are regular expressions, and it would read the body of a POST first.
//
// SPDX-License-Identifier: MIT
#include "preview/http_server.h"

#include <httplib.h>

#include <array>
#include <cstdio>
#include <random>

#include "base/command_error.h"
#include "preview/exclusive_port.h"

namespace cli {
namespace {

constexpr const char* ownHost = "127.0.0.1";
/// A browser keeps up to six connections; each tab keeps one for events.
constexpr std::size_t threads = 24;
constexpr std::size_t requestsForConnection = 1000;
/// How soon a closed connection of events is noticed.
constexpr std::chrono::seconds heartbeat{10};
constexpr const char* nothingAllowed = "default-src 'none'; frame-ancestors 'none'";

/// 128 random bits.
std::string newToken() {
    std::random_device random;
    std::string token;
    for (int i = 0; i < 4; ++i) {
        std::array<char, 9> digits{};
        std::snprintf(digits.data(), digits.size(), "%08x", random());
        token += digits.data();
    }
    return token;
}

/// Takes the same time wherever the texts differ.
bool isEqual(const std::string& one, const std::string& other) {
    int difference = one.size() == other.size() ? 0 : 1;
    for (std::size_t i = 0; i < one.size() && i < other.size(); ++i)
        difference |= one[i] ^ other[i];
    return difference == 0;
}

void refuse(httplib::Response& response, int status, const char* reason) {
    response.status = status;
    response.set_header("Content-Security-Policy", nothingAllowed);
    response.set_content(std::string(reason) + "\n", "text/plain; charset=utf-8");
}

}  // namespace

struct HttpServer::State {
    State(Handler handlerOfPaths, ChangeFeed& feed)
        : handler(std::move(handlerOfPaths)), changes(feed), token(newToken()) {}

    bool isForThisServer(const httplib::Request& request) const;
    void answer(const httplib::Request& request, httplib::Response& response) const;
    void send(const HttpResponse& answer, httplib::Response& response) const;
    void sendEvents(httplib::Response& response) const;

    Handler handler;
    ChangeFeed& changes;
    std::string token;
    int port = 0;
    httplib::Server server;
};

/// A page of another site that has its name resolved to 127.0.0.1 sends that name.
bool HttpServer::State::isForThisServer(const httplib::Request& request) const {
    const std::string ending = ":" + std::to_string(port);
    if (request.get_header_value_count("Host") != 1) return false;
    const std::string host = request.get_header_value("Host");
    return host == ownHost + ending || host == "localhost" + ending;
}

void HttpServer::State::answer(const httplib::Request& request, httplib::Response& response) const {
    if (!isForThisServer(request)) return refuse(response, 403, "another host is meant");
    if (request.method != "GET" && request.method != "HEAD") {
        response.set_header("Allow", "GET, HEAD");
        response.set_header("Connection", "close");
        return refuse(response, 405, "only GET and HEAD are answered");
    }
    const std::size_t end = request.path.find('/', 1);
    const bool hasToken =
        end != std::string::npos && isEqual(request.path.substr(1, end - 1), token);
    if (!hasToken) return refuse(response, 404, "there is nothing here");
    HttpRequest wanted;
    wanted.path = request.path.substr(end + 1);
    for (const auto& [name, value] : request.params)
        wanted.query[name] = value;
    wanted.isFromScript = request.get_header_value("X-Rgen-Preview") == "script";
    send(handler(wanted), response);
}

void HttpServer::State::send(const HttpResponse& answer, httplib::Response& response) const {
    response.status = answer.status;
    response.set_header("Content-Security-Policy",
                        answer.policy.empty() ? nothingAllowed : answer.policy);
    if (answer.isEventStream) return sendEvents(response);
    response.set_content(answer.body, answer.contentType);
}

/// The first event says how many changes there were, so that a browser that reconnects learns what
/// it has missed.
void HttpServer::State::sendEvents(httplib::Response& response) const {
    ChangeFeed& feed = changes;
    response.set_chunked_content_provider(
        "text/event-stream", [&feed, sent = std::uint64_t{0}, isFirst = true](
                                 std::size_t, httplib::DataSink& sink) mutable {
            const std::uint64_t count = isFirst ? feed.count() : feed.waitForMore(sent, heartbeat);
            if (feed.isClosed()) return false;
            const std::string text =
                isFirst || count > sent ? "data: " + std::to_string(count) + "\n\n" : ":\n\n";
            isFirst = false;
            sent = count;
            return sink.write(text.data(), text.size());
        });
}

HttpServer::HttpServer(int port, Handler handler, ChangeFeed& changes)
    : state_(std::make_unique<State>(std::move(handler), changes)) {
    httplib::Server& server = state_->server;
    server.set_default_headers({{"Cache-Control", "no-store"},
                                {"Cross-Origin-Opener-Policy", "same-origin"},
                                {"Cross-Origin-Resource-Policy", "same-origin"},
                                {"Referrer-Policy", "no-referrer"},
                                {"X-Content-Type-Options", "nosniff"}});
    server.new_task_queue = [] { return new httplib::ThreadPool(threads); };
    server.set_socket_options(
        [](socket_t socket) { requireExclusivePort(static_cast<std::uintptr_t>(socket)); });
    server.set_tcp_nodelay(true);
    server.set_payload_max_length(0);
    server.set_keep_alive_max_count(requestsForConnection);
    server.set_pre_routing_handler(
        [this](const httplib::Request& request, httplib::Response& response) {
            state_->answer(request, response);
            return httplib::Server::HandlerResponse::Handled;
        });
    server.set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, std::exception_ptr) {
            refuse(response, 500, "the preview has failed; end rgen and start it again");
        });
    state_->port = port == 0 ? server.bind_to_any_port(ownHost)
                             : (server.bind_to_port(ownHost, port) ? port : -1);
    if (state_->port > 0) return;
    throw CommandError(ExitCode::Environment,
                       "cannot listen on port " + std::to_string(port) + " of 127.0.0.1",
                       "another program may use it; leave --port out");
}

HttpServer::~HttpServer() = default;

std::string HttpServer::address() const {
    return std::string("http://") + ownHost + ":" + std::to_string(state_->port) + "/" +
           state_->token + "/";
}

void HttpServer::run() {
    state_->server.listen_after_bind();
}

void HttpServer::stop() {
    state_->changes.close();
    state_->server.stop();
}

}  // namespace cli
