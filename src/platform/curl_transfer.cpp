#include "platform/curl_transfer.h"

#include <algorithm>
#include <utility>

namespace korvel {

namespace {

/// A web address in the parts that libcurl itself reads in it; empty ones when it reads none.
struct Address {
    QByteArray scheme, host, user, password;
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
    return {part(CURLUPART_SCHEME), part(CURLUPART_HOST), part(CURLUPART_USER), part(CURLUPART_PASSWORD)};
}

/// Plain HTTP to 127.0.0.1 with nothing hidden in front of the host.
bool isAgentAddress(const Address &address) {
    return address.scheme == "http" && address.host == "127.0.0.1" && address.user.isEmpty() &&
           address.password.isEmpty();
}

bool namesThisMachine(const QByteArray &host) {
    const QByteArray lower = host.toLower();
    return lower == "localhost" || lower.endsWith(".localhost") || lower.startsWith("127.") || lower == "[::1]";
}

ErrorKind kindOf(CURLcode code) {
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
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_PARTIAL_FILE:
    case CURLE_SSL_SHUTDOWN_FAILED:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return ErrorKind::Interrupted;
    case CURLE_URL_MALFORMAT:
        return ErrorKind::InvalidRequest;
    default:
        return ErrorKind::UnreadableAnswer;
    }
}

} // namespace

CurlTransfer::CurlTransfer(HttpRequest r, std::unique_ptr<CurlSink> s, Done<HttpReply> d)
    : request(std::move(r)), sink(std::move(s)), done(std::move(d)), url(request.url.toUtf8()), easy(curl_easy_init()) {
}

CurlTransfer::~CurlTransfer() {
    curl_easy_cleanup(easy);
    curl_slist_free_all(headers);
}

bool CurlTransfer::prepare(const QString &proxy, const QString &authorities) {
    if (!easy || url.contains('\0') || url.contains('\r') || url.contains('\n'))
        return false;
    const Address address = addressOf(url);
    if (request.reach == Reach::Server && address.scheme == "https" && !address.host.isEmpty())
        prepareServer(proxy, authorities);
    // The token must reach no other machine, whatever a malformed port makes of the address.
    else if (request.reach == Reach::Loopback && isAgentAddress(address))
        prepareLoopback();
    else
        return false;
    curl_easy_setopt(easy, CURLOPT_URL, url.constData());
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, errorText);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(request.timeout.count()));
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, request.redirects > 0 && request.method == "GET" ? 1L : 0L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, static_cast<long>(request.redirects));
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "https");
    if (request.idleTimeout.count() > 0) {
        curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
        curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME,
                         std::max(1L, static_cast<long>(request.idleTimeout.count() / 1000)));
    }
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &received);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &headerReceived);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    if (request.method != "GET")
        prepareBody();
    for (const auto &[name, value] : request.headers) {
        // A value from a file must not be able to add a header of its own.
        if (value.contains('\r') || value.contains('\n') || value.contains('\0'))
            return false;
        headers = curl_slist_append(headers, (name + ": " + value).constData());
    }
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
    return true;
}

void CurlTransfer::prepareLoopback() {
    curl_easy_setopt(easy, CURLOPT_PROXY, "");
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
}

void CurlTransfer::prepareServer(const QString &proxy, const QString &authorities) {
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "https");
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (!authorities.isEmpty()) {
        curl_easy_setopt(easy, CURLOPT_CAINFO, authorities.toLocal8Bit().constData());
        curl_easy_setopt(easy, CURLOPT_CAPATH, nullptr);
    }
    // Where the system names none, libcurl still reads the customary environment variables.
    if (!proxy.isEmpty())
        curl_easy_setopt(easy, CURLOPT_PROXY, proxy.toUtf8().constData());
    // A name server that does not answer must not hold the main thread when the deadline has passed.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
}

void CurlTransfer::prepareBody() {
    curl_easy_setopt(easy, CURLOPT_POST, 1L);
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body.constData());
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    // libcurl sends a request again when a reused connection closes unanswered. A POST has to leave once.
    curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, 1L);
    curl_easy_setopt(easy, CURLOPT_FORBID_REUSE, 1L);
    headers = curl_slist_append(headers, "Expect:"); // no waiting for "100 Continue"
    const bool typed = std::any_of(request.headers.begin(), request.headers.end(),
                                   [](const auto &header) { return header.first == "Content-Type"; });
    if (!typed)
        headers = curl_slist_append(headers, "Content-Type:"); // instead of libcurl's own guess
}

size_t CurlTransfer::received(char *data, size_t size, size_t count, void *self) {
    auto &transfer = *static_cast<CurlTransfer *>(self);
    long status = 0;
    curl_off_t length = -1;
    curl_easy_getinfo(transfer.easy, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(transfer.easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    const qint64 expected = std::max<curl_off_t>(length, 0);
    const QByteArrayView bytes(data, static_cast<qsizetype>(size * count));
    return transfer.sink->body(bytes, static_cast<int>(status), expected) ? size * count : 0;
}

size_t CurlTransfer::headerReceived(char *, size_t size, size_t count, void *self) {
    const auto bytes = static_cast<qint64>(size * count);
    return static_cast<CurlTransfer *>(self)->sink->header(bytes) ? size * count : 0;
}

ErrorKind CurlTransfer::failure(CURLcode code, const Network &network) const {
    long proxyStatus = 0;
    curl_easy_getinfo(easy, CURLINFO_HTTP_CONNECTCODE, &proxyStatus);
    const bool proxyRefuses = proxyStatus >= 300; // libcurl calls that a lost connection
    const ErrorKind kind = proxyRefuses ? ErrorKind::Unreachable : kindOf(code);
    const bool noWay = kind == ErrorKind::HostNotFound || (kind == ErrorKind::Unreachable && !proxyRefuses);
    if (noWay && request.reach == Reach::Server && !namesThisMachine(addressOf(url).host) && network.isOffline())
        return ErrorKind::Offline;
    return kind;
}

Result<HttpReply> CurlTransfer::outcome(CURLcode code, const Network &network) {
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    if (auto refused = sink->end(static_cast<int>(status)))
        return *refused;
    if (code != CURLE_OK)
        return Error{failure(code, network), QString::fromUtf8(*errorText ? errorText : curl_easy_strerror(code))};
    return HttpReply{static_cast<int>(status), sink->takeBody()};
}

} // namespace korvel
