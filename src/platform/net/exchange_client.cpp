#include "platform/net/exchange_client.h"

#include "platform/net/exchange_output.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <memory>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr milliseconds HASH_TIMEOUT = 10min;
constexpr milliseconds VERIFY_TIMEOUT = 30s;

/// Variables passed to korvel-exchange. None that sets key logs, engines or libraries.
QList<std::pair<QString, QString>> environment() {
    QList<std::pair<QString, QString>> variables;
    for (const char *name :
         {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY", "SSL_CERT_FILE"})
        if (qEnvironmentVariableIsSet(name))
            variables.emplace_back(QString::fromLatin1(name), qEnvironmentVariable(name));
    return variables;
}

} // namespace

/// One run in flight. Parses its output on the thread that runs the program.
class ExchangeClient::Run {
public:
    explicit Run(std::function<void(const exchange::Progress &)> progress) : output(std::move(progress)) {}

    void take(const QByteArray &piece) {
        if (!output.feed(piece))
            stop.requestStop();
    }

    /// The result of an ended run: its last line, or the error.
    exchange::Line outcome(const ProgramResult &ended, milliseconds timeout) const {
        if (ended.end == ProgramResult::End::TimedOut)
            return Error{ErrorKind::TimedOut, u"no whole response within %1 ms"_s.arg(timeout.count())};
        if (!ended.launched)
            return Error{ErrorKind::Unreachable, u"korvel-exchange cannot be run: "_s + ended.launchError};
        const auto result = output.result();
        if (!result || ended.status != 0)
            return Error{ErrorKind::UnreadableResponse, u"korvel-exchange ended without a result"_s};
        return *result;
    }

    StopToken stop;

private:
    ExchangeOutput output;
};

ExchangeClient::ExchangeClient(Programs &p, Scheduler &s, QString path)
    : programs(p), scheduler(s), program(std::move(path)) {}

ExchangeClient::~ExchangeClient() {
    for (const auto &run : runs)
        run->stop.requestStop();
}

/// Runs the program for `task`. If the result is of type `Wanted`, `done` receives it through `valueOf`.
template <class Wanted, class Value, class ValueOf>
void ExchangeClient::start(const exchange::Task &task, milliseconds timeout,
                           std::function<void(const exchange::Progress &)> progress, ValueOf valueOf,
                           Done<Value> done) {
    const auto run = *runs.insert(std::make_shared<Run>(std::move(progress))).first;
    ProgramRun request{.executable = program, .input = exchange::toJson(task)};
    request.keepInputOpen = true;
    request.surroundings = ProgramRun::Surroundings::Own;
    request.extraEnvironment = environment();
    request.collect = ProgramRun::Collect::StandardOutput;
    request.timeout = timeout;
    request.stop = run->stop;
    request.onOutput = [run](const QByteArray &piece) { run->take(piece); };
    auto finished = [this, run, timeout, valueOf, done = std::move(done)](const ProgramResult &ended) mutable {
        runs.erase(run);
        const exchange::Line line = run->outcome(ended, timeout);
        if (const auto *wanted = std::get_if<Wanted>(&line))
            return done(valueOf(*wanted));
        const auto *error = std::get_if<Error>(&line);
        done(error ? *error : Error{ErrorKind::UnreadableResponse, u"korvel-exchange did something else"_s});
    };
    scheduler.background([&runner = programs, request = std::move(request)] { return runner.run(request); },
                         alive.guard(std::move(finished)));
}

void ExchangeClient::send(ServerRequest request, Done<HttpReply> done) {
    download(
        std::move(request), {}, [](qint64, qint64) {}, std::move(done));
}

void ExchangeClient::download(ServerRequest request, const QString &file,
                              std::function<void(qint64 got, qint64 expected)> progress, Done<HttpReply> done) {
    const milliseconds timeout = request.timeout;
    auto onMainThread = [step = alive.guard(std::move(progress))](const exchange::Progress &p) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [step, p]() mutable { step(p.got, p.expected); }, Qt::QueuedConnection);
    };
    start<HttpReply>(exchange::HttpTask{std::move(request), file}, timeout, std::move(onMainThread), std::identity(),
                     std::move(done));
}

void ExchangeClient::hash(const QString &file, Done<QString> done) {
    start<exchange::Hash>(
        exchange::HashTask{file}, HASH_TIMEOUT, [](const exchange::Progress &) {},
        [](const exchange::Hash &hash) { return hash.sha256; }, std::move(done));
}

void ExchangeClient::verify(const SignatureProof &proof, Done<bool> done) {
    start<exchange::Verdict>(
        proof, VERIFY_TIMEOUT, [](const exchange::Progress &) {},
        [](const exchange::Verdict &verdict) { return verdict.valid; }, std::move(done));
}

} // namespace korvel
