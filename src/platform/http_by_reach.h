#pragma once

#include "platform/http_client.h"

namespace korvel {

/// Sends each request through the client for where it goes.
class HttpByReach final : public HttpClient {
public:
    HttpByReach(HttpClient &a, HttpClient &s) : agent(a), servers(s) {}

    void send(HttpRequest request, Done<HttpReply> done) override {
        HttpClient &client = clientFor(request);
        client.send(std::move(request), std::move(done));
    }
    void download(HttpRequest request, const QString &file, std::function<void(qint64 got, qint64 expected)> progress,
                  Done<HttpReply> done) override {
        HttpClient &client = clientFor(request);
        client.download(std::move(request), file, std::move(progress), std::move(done));
    }

private:
    HttpClient &clientFor(const HttpRequest &request) { return request.reach == Reach::Loopback ? agent : servers; }

    HttpClient &agent;
    HttpClient &servers;
};

} // namespace korvel
