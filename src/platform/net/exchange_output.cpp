#include "platform/net/exchange_output.h"

#include <utility>
#include <variant>

namespace korvel {

namespace {
constexpr qsizetype MAX_LINE = 2 << 20; ///< Bytes: the largest response in base64, with a margin.
}

bool ExchangeOutput::feed(const QByteArray &bytes) {
    pending += bytes;
    for (qsizetype end = 0; !isBroken && (end = pending.indexOf('\n')) >= 0; pending.remove(0, end + 1))
        takeLine(pending.first(end));
    isBroken = isBroken || pending.size() > MAX_LINE;
    if (isBroken)
        pending.clear();
    return !isBroken;
}

std::optional<exchange::Line> ExchangeOutput::result() const {
    return isBroken || !pending.isEmpty() ? std::nullopt : last;
}

void ExchangeOutput::takeLine(const QByteArray &text) {
    auto line = exchange::parseLine(text);
    isBroken = !line || last;
    if (const auto *step = line ? std::get_if<exchange::Progress>(&*line) : nullptr)
        progress(*step);
    else
        last = std::move(line);
}

} // namespace korvel
