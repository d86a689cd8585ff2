#include "exchange/body_sink.h"
#include "exchange/messages.h"
#include "platform/net/exchange_client.h"
#include "platform/net/http_messages.h"
#include "support/fakes.h"
#include "support/manual_scheduler.h"

#include <QCoreApplication>

namespace korvel::test {
namespace {

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

TEST(ExchangeMessages, WhatIsNoTaskIsNone) {
    const QByteArray good = R"({"do":"http","method":"GET","url":"https://a","headers":[["A","Qg=="]],"body":"",)"
                            R"("maxBytes":9,"slowSeconds":0,"redirects":0,"file":""})";
    ASSERT_TRUE(exchange::parseTask(good));
    const std::pair<QByteArray, QByteArray> changes[] = {{"\"http\"", "\"ftp\""},
                                                         {"\"url\"", "\"uri\""},
                                                         {"\"GET\"", "null"},
                                                         {"Qg==", "Q%"},
                                                         {"[[\"A\",\"Qg==\"]]", "[7]"},
                                                         {"\"maxBytes\":9", "\"maxBytes\":4294967297"},
                                                         {"\"slowSeconds\":0", "\"slowSeconds\":0.5"},
                                                         {"\"redirects\":0", "\"redirects\":21"},
                                                         {"}", ""}};
    for (const auto &[part, instead] : changes)
        EXPECT_FALSE(exchange::parseTask(QByteArray(good).replace(part, instead))) << instead.toStdString();
    for (const char *bad : {"", "[]", R"({"do":"sha256"})", R"({"do":"ed25519","key":"","signature":""})"})
        EXPECT_FALSE(exchange::parseTask(bad)) << bad;
}

TEST(BodySink, KeepsABoundedPartOfAResponseThatIsNotTheFile) {
    const QTemporaryDir folder;
    const auto sink = exchange::makeFileSink(folder.filePath(u"file"_s), 100, [](const exchange::Progress &) {});
    EXPECT_TRUE(sink->body(QByteArray(100 << 10, 'x'), 404, 0));
    EXPECT_FALSE(sink->body(QByteArray(1 << 20, 'x'), 404, 0));
    EXPECT_EQ(sink->takeBody().size(), 64 << 10);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"file"_s)));
}

ProgramResult ended(int status, ProgramResult::End end = ProgramResult::End::Exited) {
    ProgramResult result;
    result.status = status;
    result.launched = true;
    result.end = end;
    return result;
}

struct ExchangeClientTest : ::testing::Test {
    ManualScheduler scheduler;
    FakePrograms programs;
    ExchangeClient client{programs, scheduler, u"/korvel-exchange"_s};

    /// What a request comes to when the program prints these pieces and ends so.
    std::string outcome(const QByteArrayList &pieces, const ProgramResult &result = ended(0)) {
        programs.answer = [&](const ProgramRun &run) {
            for (const QByteArray &piece : pieces)
                run.onOutput(piece);
            return result;
        };
        std::string told;
        client.send({.url = u"https://a.example/"_s}, Done<HttpReply>([&told](const Result<HttpReply> &reply) {
                        told = reply ? std::to_string(reply.value().status) + ' ' + reply.value().body.toStdString()
                                     : "kind " + std::to_string(static_cast<int>(reply.error().kind));
                    }));
        EXPECT_EQ(told, ""); // never before send() returned
        scheduler.runDue();
        return told;
    }
    static std::string kind(ErrorKind kind) { return "kind " + std::to_string(static_cast<int>(kind)); }
};

TEST_F(ExchangeClientTest, OnlyAWholeOutputOfAGoodRunIsAResult) {
    const std::string unreadable = kind(ErrorKind::UnreadableResponse);
    const QByteArray reply = exchange::toJson(exchange::Line(HttpReply{200, "{}"}));
    const QByteArray progress = exchange::toJson(exchange::Line(exchange::Progress{1, 2}));
    EXPECT_EQ(outcome({reply}), "200 {}");
    EXPECT_EQ(outcome({progress + reply.first(9), reply.mid(9)}), "200 {}");
    EXPECT_EQ(outcome({exchange::toJson(exchange::Line(Error{ErrorKind::HostNotFound, u"x"_s}))}),
              kind(ErrorKind::HostNotFound));
    const QByteArrayList none, cutOff{reply.chopped(1)}, twice{reply, reply}, goesOn{reply, progress},
        noise{"x\n", reply}, noBody{"{\"status\":200}\n"}, noStatus{"{\"status\":-1,\"body\":\"\"}\n"},
        noBase64{"{\"status\":200,\"body\":\"%\"}\n"}, noKind{"{\"failed\":\"Unheard\"}\n"},
        noProgress{"{\"got\":-1,\"expected\":0}\n", reply},
        another{exchange::toJson(exchange::Line(exchange::Verdict{true}))};
    for (const QByteArrayList &bad :
         {none, {progress}, cutOff, twice, goesOn, noise, noBody, noStatus, noBase64, noKind, noProgress, another})
        EXPECT_EQ(outcome(bad), unreadable) << bad.join().toStdString();
    EXPECT_EQ(outcome({reply}, ended(1)), unreadable);
    EXPECT_EQ(outcome({reply}, ended(-1)), unreadable); // killed behind its last line
    EXPECT_EQ(outcome({}, {}), kind(ErrorKind::Unreachable));
    EXPECT_EQ(outcome({}, ended(-1, ProgramResult::End::TimedOut)), kind(ErrorKind::TimedOut));
}

TEST_F(ExchangeClientTest, ARunThatPrintsWithoutEndIsStopped) {
    std::optional<StopToken> stop;
    programs.answer = [&](const ProgramRun &run) {
        stop = run.stop;
        for (int i = 0; i < 100 && !stop->stopRequested(); ++i)
            run.onOutput(QByteArray(1 << 20, ' '));
        return ended(-1, ProgramResult::End::Stopped);
    };
    std::optional<ErrorKind> told;
    client.hash(u"/x"_s, Done<QString>([&](const Result<QString> &r) { told = r.error().kind; }));
    scheduler.runDue();
    EXPECT_EQ(told, ErrorKind::UnreadableResponse);
    EXPECT_TRUE(stop->stopRequested());
}

TEST_F(ExchangeClientTest, NothingButTheTaskAndWhatTheProgramObeysLeavesTheTray) {
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

TEST_F(ExchangeClientTest, ADownloadReportsItsProgressInOrder) {
    programs.answer = [](const ProgramRun &run) {
        for (const qint64 got : {1, 2})
            run.onOutput(exchange::toJson(exchange::Line(exchange::Progress{got, 2})));
        return ended(0);
    };
    QList<qint64> steps;
    client.download(
        {.url = u"https://a.example/"_s}, u"/file"_s, [&](qint64 got, qint64) { steps.append(got); },
        Done<HttpReply>([](const Result<HttpReply> &) {}));
    scheduler.runDue();
    QCoreApplication::processEvents();
    EXPECT_EQ(steps, (QList<qint64>{1, 2}));
}

const QByteArray OK = "HTTP/1.1 200 OK\r\n";

/// What an answer came to, in one line: the status and the body, or the kind of failure.
std::string told(HttpResponseParser &response) {
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

/// The same bytes in pieces of `size`, then the end of the connection unless the answer is over before.
std::string read(const QByteArray &bytes, qsizetype size, bool ends, qint64 maxBytes = 8 << 20) {
    HttpResponseParser response(maxBytes);
    for (qsizetype at = 0; at < bytes.size(); at += size)
        response.feed(QByteArrayView(bytes).sliced(at, std::min(size, bytes.size() - at)));
    if (ends)
        response.end();
    return told(response);
}

TEST(HttpResponseParser, EachFramingGivesTheSameInWhateverPiecesItComes) {
    struct Case {
        QByteArray bytes;
        const char *open; ///< While the connection stays; " +": it can be used again.
        const char *ended;
    };
    const QByteArray chunked = OK + "Transfer-Encoding: Chunked\r\n\r\n";
    for (const Case &c : QList<Case>{
             {OK + "Content-Length: 2\r\n\r\n{}", "200 {} +", "200 {}"},
             {OK + "content-length:2\r\nConnection: Keep-Alive, CLOSE\r\n\r\n{}", "200 {}", "200 {}"},
             {"HTTP/1.0 200 OK\r\nContent-Length: 2\r\n\r\n{}", "200 {}", "200 {}"},
             {"HTTP/1.1 204 No Content\r\n\r\n", "204  +", "204 "},
             {"HTTP/1.1 100 Continue\r\n\r\n" + OK + "Content-Length: 1\r\n\r\nx", "200 x +", "200 x"},
             {OK + "\r\n{}", "waits", "200 {}"},
             {chunked + "1\r\n{\r\n0A;x=y\r\n}234567890\r\n0\r\nX: y\r\n\r\n", "200 {}234567890 +", "200 {}234567890"},
             {chunked + "0\r\n\r\n", "200  +", "200 "},
             {OK + "Content-Length: 2\r\n\r\n{}HTTP", "200 {}", "200 {}"}, // spoils the connection
             // What ends too early.
             {"HTT", "waits", "interrupted"},
             {OK + "Content-Length: 3\r\n\r\n{}", "waits", "interrupted"},
             {chunked + "2\r\n{}\r\n", "waits", "interrupted"},
             // What is no response.
             {"HTTP/1.1 OK\r\n\r\n", "unreadable", "unreadable"},
             {"HTTP/1.1 001 OK\r\n\r\n", "unreadable", "unreadable"},
             {"HTTP/1.1 200 \1\r\nX: y\r\n", "waits", "interrupted"}, // judged when the head is whole
             {"SSH-2.0-x\r\n", "unreadable", "unreadable"},
             {"HTTP/1.1 101 Switching\r\n\r\n", "unreadable", "unreadable"},
             {OK + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n", "unreadable", "unreadable"},
         })
        for (const qsizetype size : {qsizetype(1), qsizetype(7), qsizetype(4096)}) {
            EXPECT_EQ(read(c.bytes, size, false), c.open) << c.bytes.toStdString() << size;
            EXPECT_EQ(read(c.bytes, size, true), c.ended) << c.bytes.toStdString() << size;
        }
}

TEST(HttpResponseParser, NothingGrowsWithoutEnd) {
    const QByteArray length = OK + "Content-Length: 10\r\n\r\n";
    EXPECT_EQ(read(length + QByteArray(10, 'x'), 3, false, length.size() + 10), "200 xxxxxxxxxx +");
    EXPECT_EQ(read(length + QByteArray(15, 'x'), 4096, false, length.size() + 10), "200 xxxxxxxxxx"); // more is not its
    EXPECT_EQ(read(length + QByteArray(10, 'x'), 3, false, length.size() + 9), "too large");
    EXPECT_EQ(read(OK + "Content-Length: 99999999999999999\r\n\r\nx", 4096, false), "too large");
    EXPECT_EQ(read(OK + "\r\n" + QByteArray(5000, 'x'), 512, false, 4096), "too large");
    const QByteArray endless(70 << 10, '0');
    EXPECT_EQ(read(OK + "X: " + endless, 4096, false), "too large");
    EXPECT_EQ(read(OK + QByteArray("X: y\r\n").repeated(12 << 10), 4096, false), "too large");
    EXPECT_EQ(read(QByteArray("HTTP/1.1 100 Go\r\n\r\n").repeated(300), 512, false, 4096), "too large");
    EXPECT_EQ(read(OK + "Transfer-Encoding: chunked\r\n\r\n" + endless, 512, false, 4096), "too large");
}

} // namespace
} // namespace korvel::test
