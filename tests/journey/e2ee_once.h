#pragma once

#include "journey/journey.h"

namespace korvel::test {

/// A tray whose agent plays the encryption, with a phone that the test holds.
struct E2eeJourney : Journey {
    const QString CONNECTED = QStringLiteral("● Connected · ann · 0 sessions");

    /// Launches with the Mac in that encryption state.
    void startIn(const QString &state);

    /// Gives `times` answers of each kind to an agent that reads the request and drops the connection in ways that
    /// `seed` chooses, a connection that a poll kept open included; expects each at the agent exactly once.
    void answerEachOnce(int times, quint32 seed);

private:
    void giveAnswer(const QString &path);
};

} // namespace korvel::test
