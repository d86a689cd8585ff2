#pragma once

#include "platform/curl_sink.h"
#include "platform/http_client.h"
#include "platform/network.h"

#include <curl/curl.h>
#include <memory>

namespace korvel {

/// One request under way in libcurl. Owns everything that libcurl points to while the transfer lasts.
class CurlTransfer {
public:
    CurlTransfer(HttpRequest request, std::unique_ptr<CurlSink> sink, Done<HttpReply> done);
    CurlTransfer(const CurlTransfer &) = delete;
    CurlTransfer &operator=(const CurlTransfer &) = delete;
    ~CurlTransfer();

    /// Sets the transfer up; false when the request may not leave or cannot be formed. `proxy` and `authorities` are
    /// for servers only; empty: none, and the system's.
    bool prepare(const QString &proxy, const QString &authorities);
    CURL *handle() const { return easy; }
    /// The outcome, once libcurl is through with `code`. Called once.
    Result<HttpReply> outcome(CURLcode code, const Network &network);
    /// Hands the completion over.
    Done<HttpReply> takeDone() { return std::move(done); }

private:
    ErrorKind failure(CURLcode code, const Network &network) const;
    void prepareLoopback();
    void prepareServer(const QString &proxy, const QString &authorities);
    void prepareBody();
    static size_t received(char *data, size_t size, size_t count, void *self);
    static size_t headerReceived(char *data, size_t size, size_t count, void *self);

    const HttpRequest request;
    const std::unique_ptr<CurlSink> sink;
    Done<HttpReply> done;
    QByteArray url;
    CURL *easy = nullptr;
    curl_slist *headers = nullptr;
    char errorText[CURL_ERROR_SIZE] = {};
};

} // namespace korvel
