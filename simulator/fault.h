#pragma once

#include "simulator/http_server.h"
#include "simulator/scenario.h"

namespace korvel::sim {

// What goes wrong with the answer to one request.
enum class FaultMode {
    None,
    Silent,
    Close,
    Reset,
    Exit,
    NotHttp,
    Garbage,
    NotUtf8,
    Array,
    WrongTypes,
    Deep,
    Html,
    Truncate,
    Huge,
    Drip,
    Slow,
    Spelled
};

// One fault as the scenario gives it.
struct Fault {
    FaultMode mode = FaultMode::None;
    int delayMs = 0;           // wait before answering
    qint64 bytes = 0;          // Huge: length of the body
    int everyMs = 0;           // Drip: between two bytes
    qint64 bytesPerSecond = 0; // Slow
    HttpAnswer spelled = {};   // Spelled: the answer in place of the right one
    bool needsAnswer() const   // whether the right answer is a part of it
    {
        return mode == FaultMode::None || mode == FaultMode::Truncate || mode == FaultMode::Drip ||
               mode == FaultMode::Slow;
    }
};

// The fault that a section of the scenario asks for at a request, one turn of it taken: `faults` by path or "*" for the
// rest, of the server named `server`. A mode of an unknown name is reported on standard error and counts as none.
Fault faultFor(const Scenario &scenario, const QString &server, const QJsonObject &faults, const QByteArray &path);

// Answers the current request as the fault wants. `act` does what was asked for and gives the right answer; it is
// called only where the fault needs that.
void answerUnder(const Fault &fault, HttpConnection &connection, const std::function<void(const Respond &)> &act);

} // namespace korvel::sim
