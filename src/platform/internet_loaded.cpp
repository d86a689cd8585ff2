#include "platform/internet.h"
#include "platform/log.h"
#include "platform/refuse_later.h"
#include "update/ed25519.h"
#include "update/sha256.h"

#include <QCoreApplication>
#include <QLibrary>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

/// What the module of the bundle holds, loaded at the first call; null when it cannot be loaded.
const InternetParts *loadedParts() {
    static const InternetParts *const PARTS = []() -> const InternetParts * {
        QLibrary module(QCoreApplication::applicationDirPath() + u"/../PlugIns/korvel-internet.so"_s);
        module.setLoadHints(QLibrary::PreventUnloadHint); // its code may run to the very end
        const auto parts = reinterpret_cast<const InternetParts *(*)()>(module.resolve("korvelInternetParts"));
        if (!parts)
            log(u"[internet] "_s + module.errorString());
        return parts ? parts() : nullptr;
    }();
    return PARTS;
}

/// Makes the real client at the first request.
class LoadedHttpClient final : public HttpClient {
public:
    explicit LoadedHttpClient(Scheduler &s) : scheduler(s) {}

    void send(HttpRequest request, Done<HttpReply> done) override {
        if (HttpClient *client = real())
            client->send(std::move(request), std::move(done));
        else
            refuse(std::move(done));
    }

    void download(HttpRequest request, const QString &file, std::function<void(qint64 got, qint64 expected)> progress,
                  Done<HttpReply> done) override {
        if (HttpClient *client = real())
            client->download(std::move(request), file, std::move(progress), std::move(done));
        else
            refuse(std::move(done));
    }

private:
    HttpClient *real() {
        const InternetParts *parts = client ? nullptr : loadedParts();
        if (parts)
            client = parts->makeServerClient(scheduler);
        return client.get();
    }

    void refuse(Done<HttpReply> done) {
        refuseLater(context, std::move(done),
                    {ErrorKind::Unreachable, u"the module for servers could not be loaded"_s});
    }

    Scheduler &scheduler;
    std::unique_ptr<HttpClient> client;
    QObject context; ///< Refusals that have not been told go with it.
};

} // namespace

std::unique_ptr<HttpClient> makeServerClient(Scheduler &scheduler) {
    return std::make_unique<LoadedHttpClient>(scheduler);
}

std::optional<QString> sha256File(const QString &path) {
    const InternetParts *parts = loadedParts();
    return parts ? parts->sha256File(path) : std::nullopt;
}

bool ed25519Valid(const QByteArray &key, const QByteArray &signature, const QByteArray &message) {
    const InternetParts *parts = loadedParts();
    return parts && parts->ed25519Valid(key, signature, message);
}

} // namespace korvel
