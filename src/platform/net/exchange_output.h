#pragma once

#include "exchange/messages.h"

#include <QByteArray>
#include <functional>
#include <optional>

namespace korvel {

/// Incremental parser of the output of one run of korvel-exchange: lines of progress, then one result.
class ExchangeOutput {
public:
    explicit ExchangeOutput(std::function<void(const exchange::Progress &)> p) : progress(std::move(p)) {}

    /// Parses the next bytes. False once the output is invalid, whatever follows.
    bool feed(const QByteArray &bytes);
    /// The result of a program that has ended; none if the output is invalid or incomplete.
    std::optional<exchange::Line> result() const;

private:
    void takeLine(const QByteArray &text);

    std::function<void(const exchange::Progress &)> progress;
    QByteArray pending; ///< Start of an incomplete line.
    std::optional<exchange::Line> last;
    bool isBroken = false; ///< The output is invalid.
};

} // namespace korvel
