// Addresses of account servers: what a user types leads where it seems to lead.
#include "account/server_api.h"
#include "account/server_rules.h"
#include "fuzz/fuzz.h"

#include <QUrl>
#include <curl/curl.h>
#include <memory>

using namespace korvel;
using fuzz::require;

namespace {

QByteArray part(CURLU *url, CURLUPart which) {
    char *text = nullptr;
    curl_url_get(url, which, &text, CURLU_DEFAULT_PORT);
    const QByteArray value(text);
    curl_free(text);
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const auto typed = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto address = normalizeServer(typed);
    if (!address)
        return 0;
    require(normalizeServer(*address) == address, "a normalised address stays as it is");
    require(typed.contains(address->section(u':', 0, 0)), "the host is the typed one");
    const auto request = buildServerRequest(*address, QStringLiteral("/v1/dl/manifest"), std::chrono::seconds(1));
    if (!request)
        return 0;
    const QUrl url(request->url, QUrl::StrictMode);
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> other(curl_url(), &curl_url_cleanup);
    if (curl_url_set(other.get(), CURLUPART_URL, request->url.toUtf8().constData(), 0) != CURLUE_OK)
        return 0; // refused before anything is sent
    require(part(other.get(), CURLUPART_HOST).toLower() == url.host(QUrl::FullyEncoded).toLatin1(), "one host");
    require(part(other.get(), CURLUPART_PORT).toInt() == url.port(443), "one port");
    require(QString::number(url.port(443)) == address->section(u':', 1), "the typed port");
    require(part(other.get(), CURLUPART_SCHEME) == "https" && part(other.get(), CURLUPART_USER).isEmpty(),
            "only a host");
    require(part(other.get(), CURLUPART_PATH) == "/v1/dl/manifest", "one path");
    return 0;
}
