#pragma once

#include "platform/http_client.h"

#include <memory>

namespace korvel {

/// HttpClient through libcurl on the Qt event loop: exact deadlines, bounded answers, no hidden repeat of a POST.
class CurlHttpClient final : public HttpClient {
public:
    CurlHttpClient();
    ~CurlHttpClient() override;
    void send(HttpRequest request, Done<HttpReply> done) override;

private:
    class Multi;
    std::unique_ptr<Multi> multi; ///< Made at the first request.
};

} // namespace korvel
