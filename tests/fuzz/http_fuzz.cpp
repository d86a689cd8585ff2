// The parser of the agent's HTTP responses: the outcome does not depend on how the bytes are split.
#include "fuzz/fuzz.h"
#include "platform/net/http_messages.h"

using namespace korvel;
using fuzz::require;

namespace {

struct Outcome {
    bool over = false, persistent = false;
    int status = 0;
    std::optional<QByteArray> body;
    std::optional<ErrorKind> error;
    bool operator==(const Outcome &) const = default;
};

/// Feeds pieces that end at each multiple of `first`, or at `first` and the end only.
Outcome outcomeOf(const QByteArray &bytes, qint64 limit, bool ends, qsizetype first, bool repeated) {
    HttpResponseParser parser(limit);
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype length = std::min(at == 0 || repeated ? first : bytes.size(), bytes.size() - at);
        parser.feed(QByteArrayView(bytes).sliced(at, length));
        at += length;
    }
    if (ends)
        parser.end();
    if (!parser.isOver())
        return {.persistent = parser.leavesConnection()};
    const auto result = parser.outcome();
    if (!result)
        return {true, parser.leavesConnection(), 0, {}, result.error().kind};
    return {true, parser.leavesConnection(), result->status, result->body, {}};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const bool ends = input.flag(), repeated = input.flag();
    const qsizetype place = input.mode >> 2;
    const qint64 limit = input.mode % 5 == 0 ? place * 3 : MAX_RESPONSE;
    const Outcome whole = outcomeOf(input.bytes, limit, ends, std::max<qsizetype>(input.bytes.size(), 1), false);
    // Pieces of at least three bytes of long inputs, else a run takes too long.
    const qsizetype first = repeated ? 1 + place % 8 + input.bytes.size() / 128 : 1 + place * input.bytes.size() / 64;
    const Outcome pieces = outcomeOf(input.bytes, limit, ends, first, repeated);
    // Beast reads an open quote in a chunk's extension past its line: the kind of failure depends on what has arrived.
    const bool isOpen =
        input.bytes.toLower().contains("chunked") && input.bytes.contains('"') && !pieces.body && !whole.body;
    require(isOpen || pieces == whole, "the same outcome in pieces");
    require(whole.over || !ends, "over at the end of the connection");
    require(!whole.body || whole.body->size() <= std::min<qint64>(limit, input.bytes.size()),
            "the body is within the limit");
    require(!whole.body || (whole.status >= 200 && whole.status <= 999), "a final status");
    require(!whole.persistent || (!ends && whole.body), "only a whole response leaves the connection");
    return 0;
}
