#include "exchange/http_exchange.h"

#include "exchange/body_sink.h"

#include <algorithm>
#include <curl/curl.h>
#include <memory>

namespace korvel::exchange {

namespace {

constexpr long MIN_BYTES_PER_SECOND = 1024;

/// Parts of a URL as libcurl parses it; empty if it is invalid.
struct Address {
    QByteArray scheme, host;
};

Address addressOf(const QByteArray &url) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), &curl_url_cleanup);
    if (!parsed || curl_url_set(parsed.get(), CURLUPART_URL, url.constData(), 0) != CURLUE_OK)
        return {};
    const auto part = [&](CURLUPart which) {
        char *text = nullptr;
        const bool present = curl_url_get(parsed.get(), which, &text, 0) == CURLUE_OK;
        const QByteArray value = present ? QByteArray(text) : QByteArray();
        curl_free(text);
        return value;
    };
    return {part(CURLUPART_SCHEME), part(CURLUPART_HOST)};
}

bool namesThisMachine(const QByteArray &host) {
    const QByteArray lower = host.toLower();
    return lower == "localhost" || lower.endsWith(".localhost") || lower.startsWith("127.") || lower == "[::1]";
}

bool isOneLine(const QByteArray &text) { return !text.contains('\r') && !text.contains('\n') && !text.contains('\0'); }

ErrorKind kindOf(CURLcode code, const QByteArray &description) {
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
        return ErrorKind::TimedOut;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return ErrorKind::HostNotFound;
    case CURLE_COULDNT_CONNECT:
        return ErrorKind::Unreachable;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_CLIENTCERT:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_ENGINE_INITFAILED:
        return ErrorKind::InsecureConnection;
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        // With TLS 1.3, a server rejects a missing client certificate by an alert after the handshake.
        return description.contains("alert") ? ErrorKind::InsecureConnection : ErrorKind::Interrupted;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SSL_SHUTDOWN_FAILED:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return ErrorKind::Interrupted;
    case CURLE_URL_MALFORMAT:
        return ErrorKind::InvalidRequest;
    default:
        return ErrorKind::UnreadableResponse;
    }
}

/// One libcurl transfer. Owns all data that libcurl points to.
class Transfer {
public:
    Transfer(const ServerRequest &r, BodySink &s)
        : request(r), sink(s), url(r.url.toUtf8()), address(addressOf(url)), easy(curl_easy_init()) {}
    Transfer(const Transfer &) = delete;
    Transfer &operator=(const Transfer &) = delete;
    ~Transfer() {
        curl_easy_cleanup(easy);
        curl_slist_free_all(headers);
    }

    Result<HttpReply> run(const Network &network) {
        if (!isAllowed())
            return Error{ErrorKind::InvalidRequest, QStringLiteral("not a request over HTTPS")};
        prepare(network);
        if (refused != CURLE_OK)
            return Error{ErrorKind::InvalidRequest, QStringLiteral("libcurl refuses an option: ") +
                                                        QLatin1StringView(curl_easy_strerror(refused))};
        return outcome(curl_easy_perform(easy), network);
    }

private:
    bool isAllowed() const {
        const bool isKnown = request.method == "GET" || request.method == "POST";
        return easy && isKnown && isOneLine(url) && address.scheme == "https" && !address.host.isEmpty() &&
               std::all_of(request.headers.begin(), request.headers.end(),
                           [](const auto &h) { return isOneLine(h.first) && isOneLine(h.second); });
    }

    /// A failed option may be a protective one, so the request is not sent.
    template <class Value>
    void set(CURLoption option, Value value) {
        if (refused == CURLE_OK)
            refused = curl_easy_setopt(easy, option, value);
    }

    void prepare(const Network &network) {
        set(CURLOPT_URL, url.constData());
        set(CURLOPT_ERRORBUFFER, errorText);
        set(CURLOPT_NOSIGNAL, 1L);
        protect(network.authorities);
        const QByteArray proxy = network.proxyFor(url);
        if (!proxy.isEmpty())
            set(CURLOPT_PROXY, proxy.constData());
        if (request.slowTimeout.count() > 0) {
            set(CURLOPT_LOW_SPEED_LIMIT, MIN_BYTES_PER_SECOND);
            set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(request.slowTimeout.count()));
            set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(request.slowTimeout.count()));
        }
        set(CURLOPT_WRITEFUNCTION, &received);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_HEADERFUNCTION, &headerReceived);
        set(CURLOPT_HEADERDATA, this);
        if (request.method == "POST")
            prepareBody();
        for (const auto &[name, value] : request.headers)
            headers = curl_slist_append(headers, (name + ": " + value).constData());
        set(CURLOPT_HTTPHEADER, headers);
    }

    void protect(const QByteArray &authorities) {
        set(CURLOPT_PROTOCOLS_STR, "https");
        set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
        set(CURLOPT_FOLLOWLOCATION, request.redirects > 0 && request.method == "GET" ? 1L : 0L);
        set(CURLOPT_MAXREDIRS, static_cast<long>(request.redirects));
        set(CURLOPT_SSL_VERIFYPEER, 1L);
        set(CURLOPT_SSL_VERIFYHOST, 2L);
        set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
        if (authorities.isEmpty())
            return;
        set(CURLOPT_CAINFO, authorities.constData());
        curl_easy_setopt(easy, CURLOPT_CAPATH, nullptr); // some TLS libraries reject it, harmlessly
    }

    void prepareBody() {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDS, request.body.constData());
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        headers = curl_slist_append(headers, "Expect:"); // does not wait for "100 Continue"
        const bool isTyped = std::any_of(request.headers.begin(), request.headers.end(),
                                         [](const auto &header) { return header.first == "Content-Type"; });
        if (!isTyped)
            headers = curl_slist_append(headers, "Content-Type:"); // suppresses libcurl's default type
    }

    static size_t received(char *data, size_t size, size_t count, void *self) {
        auto &transfer = *static_cast<Transfer *>(self);
        curl_off_t length = -1;
        curl_easy_getinfo(transfer.easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
        const QByteArrayView bytes(data, static_cast<qsizetype>(size * count));
        return transfer.sink.body(bytes, transfer.status(), std::max<curl_off_t>(length, 0)) ? size * count : 0;
    }

    static size_t headerReceived(char *, size_t size, size_t count, void *self) {
        return static_cast<Transfer *>(self)->sink.header(static_cast<qint64>(size * count)) ? size * count : 0;
    }

    int status() const {
        long status = 0;
        curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
        return static_cast<int>(status);
    }

    Result<HttpReply> outcome(CURLcode code, const Network &network) {
        if (auto refusal = sink.end(status()))
            return *refusal;
        if (code == CURLE_OK)
            return HttpReply{status(), sink.takeBody()};
        return Error{failure(code, network), QString::fromUtf8(*errorText ? errorText : curl_easy_strerror(code))};
    }

    ErrorKind failure(CURLcode code, const Network &network) const {
        long proxyStatus = 0;
        curl_easy_getinfo(easy, CURLINFO_HTTP_CONNECTCODE, &proxyStatus);
        if (proxyStatus >= 300) // libcurl reports a lost connection
            return ErrorKind::Unreachable;
        const ErrorKind kind = kindOf(code, errorText);
        const bool hasNoWay = kind == ErrorKind::HostNotFound || kind == ErrorKind::Unreachable;
        return hasNoWay && !namesThisMachine(address.host) && network.isOffline() ? ErrorKind::Offline : kind;
    }

    const ServerRequest &request;
    BodySink &sink;
    const QByteArray url;
    const Address address;
    CURL *easy;
    curl_slist *headers = nullptr;
    CURLcode refused = CURLE_OK;
    char errorText[CURL_ERROR_SIZE] = {};
};

} // namespace

Result<HttpReply> run(const HttpTask &task, const Network &network,
                      const std::function<void(const Progress &)> &progress) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const auto sink = task.file.isEmpty() ? makeMemorySink(task.request.maxBytes)
                                          : makeFileSink(task.file, task.request.maxBytes, progress);
    return Transfer(task.request, *sink).run(network);
}

} // namespace korvel::exchange
