#include "platform/curl_http_client.h"

#include "platform/curl_transfer.h"

#include <QSocketNotifier>
#include <QTimer>
#include <map>

namespace korvel {

namespace {

struct Watch {
    std::unique_ptr<QSocketNotifier> read;
    std::unique_ptr<QSocketNotifier> write;
};

/// Notifiers may be told to go by the activity that they report, so they are deleted later.
void retire(std::unique_ptr<QSocketNotifier> &notifier) {
    if (!notifier)
        return;
    notifier->setEnabled(false);
    notifier.release()->deleteLater();
}

} // namespace

/// The transfers under way and what libcurl wants to be told about.
class CurlHttpClient::Multi {
public:
    Multi() : handle(curl_multi_init()) {
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
            Result<HttpReply> outcome = node.mapped()->outcome(code);
            node.mapped()->takeDone()(std::move(outcome));
        }
    }

    CURLM *handle;
    std::map<CURL *, std::unique_ptr<CurlTransfer>> transfers;
    std::map<curl_socket_t, Watch> watches;
    QTimer timer;
};

CurlHttpClient::CurlHttpClient() = default;
CurlHttpClient::~CurlHttpClient() = default;

void CurlHttpClient::send(HttpRequest request, Done<HttpReply> done) {
    if (!multi) {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        multi = std::make_unique<Multi>();
    }
    auto transfer = std::make_unique<CurlTransfer>(std::move(request), std::move(done));
    if (transfer->prepare())
        return multi->add(std::move(transfer));
    // Never called back before this returns, so that callers see one order of events.
    auto refused = std::make_shared<Done<HttpReply>>(transfer->takeDone());
    QTimer::singleShot(0, [refused] { (*refused)(Error{ErrorKind::InvalidRequest, {}}); });
}

} // namespace korvel
