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
    Drip
};

// One fault as the scenario gives it.
struct Fault {
    FaultMode mode = FaultMode::None;
    int delayMs = 0;         // wait before answering
    qint64 bytes = 0;        // Huge: length of the body
    int everyMs = 0;         // Drip: between two bytes
    bool acts = false;       // what was asked for is done nevertheless
    bool needsAnswer() const // whether the right answer is a part of it
    {
        return acts || mode == FaultMode::None || mode == FaultMode::Truncate || mode == FaultMode::Drip;
    }
};

// The fault that the scenario's "faults" ask for at this request, one turn of it taken. A mode of an unknown name is
// reported on standard error and counts as none.
Fault faultFor(const Scenario &scenario, const QByteArray &path);

// Answers the current request as the fault wants. `answer` is the right answer where the fault needs one.
void playFault(HttpConnection &connection, const Fault &fault, const HttpAnswer &answer);

} // namespace korvel::sim
