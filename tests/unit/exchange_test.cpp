#include "exchange/messages.h"
#include "platform/exchange_client.h"
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
    const std::pair<QByteArray, QByteArray> changes[] = {
        {"\"http\"", "\"ftp\""},
        {"\"url\"", "\"uri\""},
        {"\"https://a\"", "7"},
        {"\"GET\"", "null"},
        {"\"body\":\"\"", "\"body\":\"%\""},
        {"Qg==", "Q%"},
        {"[[\"A\",\"Qg==\"]]", "{}"},
        {"[[\"A\",\"Qg==\"]]", "[7]"},
        {"\"maxBytes\":9", "\"maxBytes\":-1"},
        {"\"maxBytes\":9", "\"maxBytes\":4294967297"},
        {"\"slowSeconds\":0", "\"slowSeconds\":0.5"},
        {"\"redirects\":0", "\"redirects\":21"},
        {"\"file\":\"\"", "\"file\":[]"},
        {"}", ""},
    };
    for (const auto &[part, instead] : changes)
        EXPECT_FALSE(exchange::parseTask(QByteArray(good).replace(part, instead))) << instead.toStdString();
    for (const char *bad :
         {"", "[]", R"({"do":"sha256"})", R"({"do":"sha256","file":7})", R"({"do":"ed25519","key":"","signature":""})"})
        EXPECT_FALSE(exchange::parseTask(bad)) << bad;
}

ProgramResult ended(int status, ProgramResult::End end = ProgramResult::End::Itself) {
    ProgramResult result;
    result.status = status;
    result.launched = true;
    result.end = end;
    return result;
}

struct ExchangeClientTest : ::testing::Test {
    ManualScheduler scheduler;
    RecordedPrograms programs;
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
        scheduler.settle();
        return told;
    }
    static std::string kind(ErrorKind kind) { return "kind " + std::to_string(static_cast<int>(kind)); }
};

TEST_F(ExchangeClientTest, OnlyAWholeOutputOfAGoodRunIsAResult) {
    const std::string unreadable = kind(ErrorKind::UnreadableAnswer);
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
    EXPECT_EQ(outcome({reply}, ended(-1)),
              unreadable); // killed behind its last line
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
    scheduler.settle();
    EXPECT_EQ(told, ErrorKind::UnreadableAnswer);
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
    scheduler.settle();
    QCoreApplication::processEvents();
    EXPECT_EQ(steps, (QList<qint64>{1, 2}));
}

} // namespace
} // namespace korvel::test
