#include "platform/curl_http_client.h"

#include "platform/curl_sink.h"
#include "platform/curl_transfer.h"
#include "platform/retire_notifier.h"

#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <map>

namespace korvel {

namespace {

struct Watch {
    std::unique_ptr<QSocketNotifier> read;
    std::unique_ptr<QSocketNotifier> write;
};

} // namespace

/// The transfers under way and what libcurl wants to be told about.
class CurlHttpClient::Multi {
public:
    explicit Multi(const Network &n) : network(n), handle(curl_multi_init()) {
        curl_multi_setopt(handle, CURLMOPT_SOCKETFUNCTION, &socketChanged);
        curl_multi_setopt(handle, CURLMOPT_SOCKETDATA, this);
        curl_multi_setopt(handle, CURLMOPT_TIMERFUNCTION, &timerChanged);
        curl_multi_setopt(handle, CURLMOPT_TIMERDATA, this);
        timer.setSingleShot(true);
        timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
    }

    ~Multi() {
        for (auto &[easy, transfer] : transfers)
            curl_multi_remove_handle(handle, easy);
        // Whoever waits is told, through the completions that go with the transfers.
        auto dropped = std::exchange(transfers, {});
        dropped.clear();
        curl_multi_cleanup(handle);
    }

    void add(std::unique_ptr<CurlTransfer> transfer) {
        CURL *easy = transfer->handle();
        transfers.emplace(easy, std::move(transfer));
        curl_multi_add_handle(handle, easy);
    }

private:
    static int socketChanged(CURL *, curl_socket_t socket, int what, void *self, void *) {
        static_cast<Multi *>(self)->watch(socket, what);
        return 0;
    }

    static int timerChanged(CURLM *, long ms, void *self) {
        QTimer &timer = static_cast<Multi *>(self)->timer;
        if (ms < 0)
            timer.stop();
        else
            timer.start(static_cast<int>(ms));
        return 0;
    }

    void watch(curl_socket_t socket, int what) {
        Watch &w = watches[socket];
        const bool read = what == CURL_POLL_IN || what == CURL_POLL_INOUT;
        const bool write = what == CURL_POLL_OUT || what == CURL_POLL_INOUT;
        set(w.read, read, socket, QSocketNotifier::Read, CURL_CSELECT_IN);
        set(w.write, write, socket, QSocketNotifier::Write, CURL_CSELECT_OUT);
        if (!read && !write)
            watches.erase(socket);
    }

    void set(std::unique_ptr<QSocketNotifier> &slot, bool wanted, curl_socket_t socket, QSocketNotifier::Type type,
             int event) {
        if (wanted == (slot != nullptr))
            return;
        if (!wanted)
            return retire(slot);
        slot = std::make_unique<QSocketNotifier>(socket, type);
        QObject::connect(slot.get(), &QSocketNotifier::activated, slot.get(),
                         [this, socket, event] { act(socket, event); });
    }

    void act(curl_socket_t socket, int events) {
        int running = 0;
        curl_multi_socket_action(handle, socket, events, &running);
        finishDone();
    }

    void finishDone() {
        int left = 0;
        while (CURLMsg *message = curl_multi_info_read(handle, &left)) {
            if (message->msg != CURLMSG_DONE)
                continue;
            const CURLcode code = message->data.result;
            auto node = transfers.extract(message->easy_handle);
            curl_multi_remove_handle(handle, node.key());
            Result<HttpReply> outcome = node.mapped()->outcome(code, network);
            node.mapped()->takeDone()(std::move(outcome));
        }
    }

    const Network &network;
    CURLM *handle;
    std::map<CURL *, std::unique_ptr<CurlTransfer>> transfers;
    std::map<curl_socket_t, Watch> watches;
    QTimer timer;
};

/// A request that waits for its proxy. Who comes first, the answer or the deadline, takes it.
struct CurlHttpClient::ProxyQuery {
    HttpRequest request;
    std::unique_ptr<CurlSink> sink;
    Done<HttpReply> done;
    QElapsedTimer clock;
    bool taken = false;
};

CurlHttpClient::CurlHttpClient(Scheduler &s, Network n)
    : scheduler(s), network(std::move(n)), context(std::make_unique<QObject>()) {}
CurlHttpClient::~CurlHttpClient() = default;

void CurlHttpClient::send(HttpRequest request, Done<HttpReply> done) {
    auto sink = std::make_unique<MemorySink>(request.maxBytes);
    dispatch(std::move(request), std::move(sink), std::move(done));
}

void CurlHttpClient::download(HttpRequest request, const QString &file,
                              std::function<void(qint64 got, qint64 expected)> progress, Done<HttpReply> done) {
    auto sink = std::make_unique<FileSink>(file, request.maxBytes, std::move(progress));
    dispatch(std::move(request), std::move(sink), std::move(done));
}

void CurlHttpClient::dispatch(HttpRequest request, std::unique_ptr<CurlSink> sink, Done<HttpReply> done) {
    if (request.reach == Reach::Server)
        lookUpProxy(std::make_shared<ProxyQuery>(ProxyQuery{std::move(request), std::move(sink), std::move(done), {}}));
    else
        start(std::move(request), std::move(sink), std::move(done), {});
}

void CurlHttpClient::lookUpProxy(std::shared_ptr<ProxyQuery> query) {
    query->clock.start();
    // A download has hours, which its proxy's settings must not take.
    const milliseconds silence = query->request.idleTimeout;
    const milliseconds limit = silence > 0ms ? std::min(silence, query->request.timeout) : query->request.timeout;
    QTimer::singleShot(limit, Qt::PreciseTimer, context.get(), [query] {
        if (!std::exchange(query->taken, true))
            query->done(Error{ErrorKind::TimedOut, QStringLiteral("the proxy settings could not be read in time")});
    });
    scheduler.background([look = network.proxyFor, url = query->request.url] { return look(url); },
                         alive.guard([this, query](const QString &proxy) {
                             if (std::exchange(query->taken, true))
                                 return;
                             const milliseconds left = query->request.timeout - milliseconds(query->clock.elapsed());
                             query->request.timeout = std::max<milliseconds>(left, 1ms); // 0 would mean no limit
                             start(std::move(query->request), std::move(query->sink), std::move(query->done), proxy);
                         }));
}

void CurlHttpClient::start(HttpRequest request, std::unique_ptr<CurlSink> sink, Done<HttpReply> done,
                           const QString &proxy) {
    if (!multi) {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        multi = std::make_unique<Multi>(network);
    }
    auto transfer = std::make_unique<CurlTransfer>(std::move(request), std::move(sink), std::move(done));
    if (transfer->prepare(proxy, network.authorities))
        return multi->add(std::move(transfer));
    // Never called back before this returns, so that callers see one order of events.
    auto refused = std::make_shared<Done<HttpReply>>(transfer->takeDone());
    QTimer::singleShot(0, [refused] { (*refused)(Error{ErrorKind::InvalidRequest, {}}); });
}

} // namespace korvel
