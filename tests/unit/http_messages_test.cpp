#include "platform/http_messages.h"

#include <gtest/gtest.h>

namespace korvel::test {
namespace {

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
             {OK + "Content-Length: 2\r\n\r\n{}HTTP", "200 {}", "200 {}"}, // spoils the connection
             // What ends too early.
             {"HTT", "waits", "interrupted"},
             {OK + "Content-Length: 3\r\n\r\n{}", "waits", "interrupted"},
             {chunked + "2\r\n{}\r\n", "waits", "interrupted"},
             // What is no response.
             {"HTTP/1.1 OK\r\n\r\n", "unreadable", "unreadable"},
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
    EXPECT_EQ(read(length + QByteArray(10, 'x'), 3, false, length.size() + 9), "too large");
    EXPECT_EQ(read(OK + "\r\n" + QByteArray(5000, 'x'), 512, false, 4096), "too large");
    const QByteArray endless(70 << 10, '0');
    EXPECT_EQ(read(OK + "X: " + endless, 4096, false), "too large");
    EXPECT_EQ(read(OK + QByteArray("X: y\r\n").repeated(12 << 10), 4096, false), "too large");
    EXPECT_EQ(read(QByteArray("HTTP/1.1 100 Go\r\n\r\n").repeated(300), 512, false, 4096), "too large");
    EXPECT_EQ(read(OK + "Transfer-Encoding: chunked\r\n\r\n" + endless, 512, false, 4096), "too large");
}

} // namespace
} // namespace korvel::test
