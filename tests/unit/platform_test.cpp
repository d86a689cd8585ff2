#include "app/single_instance.h"
#include "base/done.h"
#include "exchange/body_sink.h"
#include "exchange/messages.h"
#include "platform/net/exchange_client.h"
#include "platform/net/http_messages.h"
#include "platform/qt/qt_scheduler.h"
#include "support/fakes.h"
#include "support/manual_scheduler.h"

#include <QCoreApplication>
#include <QTest>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>
#include <system_error>
#include <thread>
#include <tuple>
#include <utility>

namespace korvel::test {
namespace {

TEST(Done, ReportsOnTheMainThreadThatItWasDropped) {
    int calls = 0;
    std::thread other([done = Done<int>([&](const Result<int> &r) {
                           ++calls;
                           EXPECT_EQ(r.error().kind, ErrorKind::Dropped);
                           EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                       })]() mutable { const Done<int> taken = std::move(done); });
    other.join();
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 1; }));
}

TEST(QtScheduler, WorkWaitsForAThreadAndIsLeftOutWhenThereIsNoneForSeconds) {
    int refusals = 0;
    QtScheduler scheduler(20, [&](std::function<void()> f) {
        if (refusals-- > 0)
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        return WorkerThreads::makeThread(std::move(f));
    });
    const auto run = [&](int refused) {
        int result = -1;
        refusals = refused;
        scheduler.background([] { return 7; }, [&](int end) { result = end; });
        EXPECT_EQ(result, -1); // never before the caller has gone on
        EXPECT_TRUE(QTest::qWaitFor([&] { return result >= 0; }));
        return result;
    };
    EXPECT_EQ(run(3), 7);
    const Instant begin = scheduler.now();
    EXPECT_EQ(run(1000000), 0);
    EXPECT_GE(scheduler.now() - begin, 5s);
    EXPECT_EQ(run(0), 7);
}

TEST(QtScheduler, SixtyFourJobsRunAtATimeAndTheOthersWait) {
    QtScheduler scheduler;
    std::atomic<int> running = 0;
    std::atomic<bool> met = false;
    int ended = 0;
    const Instant deadline = Clock::now() + 10s;
    const auto meetOthers = [&] {
        EXPECT_LE(++running, 64);
        for (; !met && Clock::now() < deadline; std::this_thread::yield())
            if (running == 64)
                met = true;
        --running;
        return true;
    };
    for (int i = 0; i < 200; ++i)
        scheduler.background(meetOthers, [&](bool) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            ++ended;
        });
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended == 200; }, 20000));
    EXPECT_TRUE(met);
}

TEST(QtScheduler, ATimerMayBeCancelledByItsOwnCall) {
    QtScheduler scheduler;
    int periodic = 0, single = 0;
    Timer timer = scheduler.every(milliseconds(1), [&] {
        ++periodic;
        timer.cancel();
    });
    const Timer once = scheduler.after(milliseconds(1), [&] { ++single; });
    bool over = false;
    const Timer end = scheduler.after(milliseconds(20), [&] { over = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return over; }));
    EXPECT_EQ(std::pair(periodic, single), std::pair(1, 1));
}

/// One other instance.
struct FakeInstances final : RunningInstances {
    QList<qint64> others() override { return {7}; }
    void terminate(qint64) override {}
    bool isTerminated(qint64) override { return now >= exit; }
    void forceTerminate(qint64) override { forced = true; }

    Instant now, exit;
    bool forced = false;
};

TEST(SingleInstance, AnotherOneIsForcedToExitAfterThreeSeconds) {
    for (const auto &[exitsAfter, time, forced] :
         {std::tuple<milliseconds, milliseconds, bool>(0ms, 0ms, false), {250ms, 300ms, false}, {1h, 3000ms, true}}) {
        FakeInstances instances;
        instances.exit += exitsAfter;
        endOtherInstances(
            instances, [&](milliseconds by) { instances.now += by; }, [&] { return instances.now; });
        EXPECT_EQ(instances.now, Instant(time));
        EXPECT_EQ(instances.forced, forced);
    }
}

TEST(ExchangeMessages, ATaskArrivesAsItWasWritten) {
    ServerRequest post{.method = "POST", .url = u"https://a.example/ä"_s, .body = QByteArray("\0\n\xff", 3)};
    post.headers = {{"Authorization", "Bearer \xff"}, {"X", ""}};
    ServerRequest get{.url = u"https://a.example/"_s, .maxBytes = Q_INT64_C(4) << 30};
    get.slowTimeout = std::chrono::seconds(60);
    get.redirects = MAX_REDIRECTS;
    const SignatureProof proof{.key = "k", .signature = "s", .message = "m\n"};
    for (const exchange::Task &task : std::initializer_list<exchange::Task>{
             exchange::HttpTask{post}, exchange::HttpTask{get, u"/a \"b\"/c"_s}, exchange::HashTask{u"/x"_s}, proof}) {
        const QByteArray line = exchange::toJson(task);
        EXPECT_EQ(line.indexOf('\n'), line.size() - 1);
        EXPECT_EQ(exchange::parseTask(line), task) << line.toStdString();
    }
}

TEST(BodySink, KeepsABoundedPartOfAResponseThatIsNotTheFile) {
    const QTemporaryDir folder;
    const auto sink = exchange::makeFileSink(folder.filePath(u"file"_s), 100, [](const exchange::Progress &) {});
    EXPECT_TRUE(sink->body(QByteArray(100 << 10, 'x'), 404, 0));
    EXPECT_FALSE(sink->body(QByteArray(1 << 20, 'x'), 404, 0));
    EXPECT_EQ(sink->takeBody().size(), 64 << 10);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"file"_s)));
}

struct ExchangeClientTest : ::testing::Test {
    ManualScheduler scheduler;
    FakePrograms programs;
    ExchangeClient client{programs, scheduler, u"/korvel-exchange"_s};
    QList<qint64> progress; ///< The bytes received, as reported.

    static QByteArray line(const exchange::Line &content) { return exchange::toJson(content); }
    /// The result of a download when the program prints these pieces and exits so.
    QString outcome(const QByteArrayList &pieces, const ProgramResult &result = exited(0)) {
        programs.behave = [&](const ProgramRun &run) {
            for (const QByteArray &piece : pieces)
                run.onOutput(piece);
            return result;
        };
        QString outcome;
        progress.clear();
        client.download(
            {.url = u"https://a.example/"_s}, u"/file"_s, [this](qint64 got, qint64) { progress.append(got); },
            Done<HttpReply>([&outcome](const Result<HttpReply> &reply) {
                outcome = reply ? QString::number(reply.value().status) + u' ' + QString::fromUtf8(reply.value().body)
                                : failure(reply.error().kind);
            }));
        EXPECT_EQ(outcome, u""_s); // never before download() returned
        scheduler.runDue();
        QCoreApplication::processEvents();
        return outcome;
    }
    static QString failure(ErrorKind kind) { return u"failure "_s + QString::number(static_cast<int>(kind)); }
};

TEST_F(ExchangeClientTest, OnlyTheWholeOutputOfASuccessfulRunIsAResult) {
    const QByteArray reply = line(HttpReply{200, "{}"}), half = line(exchange::Progress{1, 2});
    EXPECT_EQ(outcome({half + line(exchange::Progress{2, 2}) + reply.first(9), reply.mid(9)}), u"200 {}"_s);
    EXPECT_EQ(progress, (QList<qint64>{1, 2}));
    EXPECT_EQ(outcome({line(Error{ErrorKind::HostNotFound, u"x"_s})}), failure(ErrorKind::HostNotFound));
    for (const QByteArray &bad :
         {""_ba, half, reply.chopped(1), reply + reply, reply + half, "x\n" + reply, "{\"status\":200}\n"_ba,
          "{\"status\":-1,\"body\":\"\"}\n"_ba, "{\"status\":200,\"body\":\"%\"}\n"_ba, "{\"failed\":\"Unheard\"}\n"_ba,
          "{\"got\":-1,\"expected\":0}\n" + reply, line(exchange::Verdict{true})})
        EXPECT_EQ(outcome({bad}), failure(ErrorKind::UnreadableResponse)) << bad.constData();
    for (const int status : {1, -1}) // -1: killed after its last line
        EXPECT_EQ(outcome({reply}, exited(status)), failure(ErrorKind::UnreadableResponse));
    EXPECT_EQ(outcome({}, {}), failure(ErrorKind::Unreachable));
    ProgramResult timedOut = exited(-1);
    timedOut.end = ProgramResult::End::TimedOut;
    EXPECT_EQ(outcome({}, timedOut), failure(ErrorKind::TimedOut));
}

TEST_F(ExchangeClientTest, ARunThatPrintsEndlesslyIsStopped) {
    programs.behave = [&](const ProgramRun &run) {
        int pieces = 0;
        for (; pieces < 100 && !run.stop->stopRequested(); ++pieces)
            run.onOutput(QByteArray(1 << 20, ' '));
        EXPECT_LT(pieces, 100);
        ProgramResult stopped = exited(-1);
        stopped.end = ProgramResult::End::Stopped;
        return stopped;
    };
    std::optional<ErrorKind> error;
    client.hash(u"/x"_s, Done<QString>([&](const Result<QString> &r) { error = r.error().kind; }));
    scheduler.runDue();
    EXPECT_EQ(error, ErrorKind::UnreadableResponse);
}

TEST_F(ExchangeClientTest, TheProgramGetsTheTaskAndTheProxyOfTheEnvironmentOnly) {
    qputenv("https_proxy", "http://p.example");
    qputenv("SSLKEYLOGFILE", "/keys");
    outcome({});
    const ProgramRun &run = programs.runs.back();
    EXPECT_EQ(run.executable, u"/korvel-exchange"_s);
    EXPECT_TRUE(run.arguments.isEmpty());
    EXPECT_TRUE(exchange::parseTask(run.input));
    EXPECT_TRUE(run.keepInputOpen);
    EXPECT_EQ(run.surroundings, ProgramRun::Surroundings::Own);
    EXPECT_TRUE(run.extraEnvironment.contains(std::pair(u"https_proxy"_s, u"http://p.example"_s)));
    for (const auto &[name, value] : run.extraEnvironment)
        EXPECT_NE(name, u"SSLKEYLOGFILE"_s);
    qunsetenv("https_proxy");
    qunsetenv("SSLKEYLOGFILE");
}

const QByteArray OK = "HTTP/1.1 200 OK\r\n";

/// The result of these bytes in pieces of `size`, then of the end of the connection: "status body" with " +" if the
/// connection can be used again, or the failure.
std::string parsed(const QByteArray &bytes, qsizetype size, bool ends, qint64 maxBytes = 8 << 20) {
    HttpResponseParser response(maxBytes);
    for (qsizetype at = 0; at < bytes.size(); at += size)
        response.feed(QByteArrayView(bytes).sliced(at, std::min(size, bytes.size() - at)));
    if (ends)
        response.end();
    if (!response.isOver())
        return "waits";
    const bool stays = response.leavesConnection();
    const auto outcome = response.outcome();
    if (!outcome)
        return outcome.error().kind == ErrorKind::Interrupted ? "interrupted"
               : outcome.error().kind == ErrorKind::TooLarge  ? "too large"
                                                              : "unreadable";
    return std::to_string(outcome.value().status) + ' ' + outcome.value().body.toStdString() + (stays ? " +" : "");
}

TEST(HttpResponseParser, EachFramingIsReadInAnyPieces) {
    const QByteArray chunked = OK + "Transfer-Encoding: Chunked\r\n\r\n";
    // The bytes, and the result before and after the end of the connection.
    for (const auto &[bytes, open, ended] : std::initializer_list<std::tuple<QByteArray, const char *, const char *>>{
             {OK + "Content-Length: 2\r\n\r\n{}", "200 {} +", "200 {}"},
             {OK + "content-length:2\r\nConnection: Keep-Alive, CLOSE\r\n\r\n{}", "200 {}", "200 {}"},
             {"HTTP/1.0 200 OK\r\nContent-Length: 2\r\n\r\n{}", "200 {}", "200 {}"},
             {"HTTP/1.1 204 No Content\r\n\r\n", "204  +", "204 "},
             {"HTTP/1.1 100 Continue\r\n\r\n" + OK + "Content-Length: 1\r\n\r\nx", "200 x +", "200 x"},
             {OK + "\r\n{}", "waits", "200 {}"},
             {chunked + "1\r\n{\r\n0A;x=y\r\n}234567890\r\n0\r\nX: y\r\n\r\n", "200 {}234567890 +", "200 {}234567890"},
             {chunked + "0\r\n\r\n", "200  +", "200 "},
             {OK + "Content-Length: 2\r\n\r\n{}HTTP", "200 {}", "200 {}"}, // spoils the connection
             {"HTT", "waits", "interrupted"},
             {OK + "Content-Length: 3\r\n\r\n{}", "waits", "interrupted"},
             {chunked + "2\r\n{}\r\n", "waits", "interrupted"},
             {"HTTP/1.1 OK\r\n\r\n", "unreadable", "unreadable"},
             {"HTTP/1.1 001 OK\r\n\r\n", "unreadable", "unreadable"},
             {"HTTP/1.1 200 \1\r\nX: y\r\n", "waits", "interrupted"}, // judged when the head is whole
             {"SSH-2.0-x\r\n", "unreadable", "unreadable"},
             {"HTTP/1.1 101 Switching\r\n\r\n", "unreadable", "unreadable"},
             {OK + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n", "unreadable", "unreadable"},
         })
        for (const qsizetype size : {1, 7, 4096}) {
            EXPECT_EQ(parsed(bytes, size, false), open) << bytes.toStdString() << size;
            EXPECT_EQ(parsed(bytes, size, true), ended) << bytes.toStdString() << size;
        }
}

TEST(HttpResponseParser, EveryPartOfAResponseIsBounded) {
    const QByteArray length = OK + "Content-Length: 10\r\n\r\n";
    EXPECT_EQ(parsed(length + QByteArray(10, 'x'), 3, false, length.size() + 10), "200 xxxxxxxxxx +");
    EXPECT_EQ(parsed(length + QByteArray(15, 'x'), 4096, false, length.size() + 10), "200 xxxxxxxxxx"); // ignored
    EXPECT_EQ(parsed(length + QByteArray(10, 'x'), 3, false, length.size() + 9), "too large");
    EXPECT_EQ(parsed(OK + "Content-Length: 99999999999999999\r\n\r\nx", 4096, false), "too large");
    EXPECT_EQ(parsed(OK + "\r\n" + QByteArray(5000, 'x'), 512, false, 4096), "too large");
    const QByteArray endless(70 << 10, '0');
    EXPECT_EQ(parsed(OK + "X: " + endless, 4096, false), "too large");
    EXPECT_EQ(parsed(OK + QByteArray("X: y\r\n").repeated(12 << 10), 4096, false), "too large");
    EXPECT_EQ(parsed(QByteArray("HTTP/1.1 100 Go\r\n\r\n").repeated(300), 512, false, 4096), "too large");
    EXPECT_EQ(parsed(OK + "Transfer-Encoding: chunked\r\n\r\n" + endless, 512, false, 4096), "too large");
}

} // namespace
} // namespace korvel::test
