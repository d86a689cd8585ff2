#pragma once

#include "platform/alive.h"
#include "platform/http_client.h"
#include "platform/network.h"
#include "platform/scheduler.h"

#include <QObject>
#include <memory>

namespace korvel {

class CurlSink;

/// HttpClient through libcurl on the Qt event loop: exact deadlines, bounded answers, no hidden repeat of a POST.
class CurlHttpClient final : public HttpClient {
public:
    /// `scheduler` runs the look-ups of `network` in the background.
    explicit CurlHttpClient(Scheduler &scheduler, Network network = systemNetwork());
    ~CurlHttpClient() override;
    void send(HttpRequest request, Done<HttpReply> done) override;
    void download(HttpRequest request, const QString &file, std::function<void(qint64 got, qint64 expected)> progress,
                  Done<HttpReply> done) override;

private:
    class Multi;
    struct ProxyQuery;
    void dispatch(HttpRequest request, std::unique_ptr<CurlSink> sink, Done<HttpReply> done);
    void lookUpProxy(std::shared_ptr<ProxyQuery> query);
    void start(HttpRequest request, std::unique_ptr<CurlSink> sink, Done<HttpReply> done, const QString &proxy);

    Scheduler &scheduler;
    const Network network;
    std::unique_ptr<Multi> multi;     ///< Made at the first request.
    std::unique_ptr<QObject> context; ///< Its deadlines go with it.
    Alive alive;
};

} // namespace korvel
