// The messages between the tray and korvel-exchange, read on both sides.
#include "exchange/messages.h"
#include "fuzz/json_mutator.h"
#include "platform/net/exchange_output.h"

using namespace korvel;
using namespace korvel::exchange;
using fuzz::require;
using namespace Qt::StringLiterals;

namespace {

/// Progress as it came, then the result; empty without one.
QByteArray outcomeOf(const QByteArray &output, qsizetype first) {
    QByteArray reported;
    ExchangeOutput parser([&reported](const Progress &p) { reported += toJson(Line(p)); });
    parser.feed(output.first(first));
    const bool valid = parser.feed(output.sliced(first));
    const auto result = parser.result();
    require(valid || !result, "invalid output has no result");
    return result ? reported + toJson(*result) : valid ? reported + "none" : QByteArray("invalid");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const fuzz::Input input(data, size);
    if (const auto task = parseTask(input.bytes)) {
        const QByteArray text = toJson(*task);
        require(text.count('\n') == 1 && text.endsWith('\n'), "a task is one line");
        require(parseTask(text) == task, "a task is read back");
        const auto *http = std::get_if<HttpTask>(&*task);
        require(!http || (http->request.redirects >= 0 && http->request.redirects <= 20), "redirects are limited");
        require(!http || http->request.maxBytes >= 0, "the limit is not negative");
    }
    if (const auto line = parseLine(input.bytes)) {
        const QByteArray text = toJson(*line);
        const auto again = parseLine(text);
        require(text.count('\n') == 1 && again && toJson(*again) == text, "a line is read back");
    }
    const qsizetype first = input.bytes.size() * (input.mode & 63) / 64;
    require(outcomeOf(input.bytes, 0) == outcomeOf(input.bytes, first), "the same outcome in pieces");
    return 0;
}
