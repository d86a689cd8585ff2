#include "platform/curl_http_client.h"
#include "platform/internet.h"

namespace korvel {

std::unique_ptr<HttpClient> makeServerClient(Scheduler &scheduler) {
    return std::make_unique<CurlHttpClient>(scheduler);
}

} // namespace korvel
