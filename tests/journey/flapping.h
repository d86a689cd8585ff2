#pragma once

#include "journey/journey.h"

namespace korvel::test {

/// What a process holds at one moment.
struct Holdings {
    double megabytes = 0; ///< Resident memory, in MiB.
    qsizetype descriptors = 0;
    qsizetype threads = 0;

    static Holdings now();
};

/// An HttpClient that counts what goes through it.
class CountingHttp final : public HttpClient {
public:
    explicit CountingHttp(HttpClient &c) : client(c) {}
    void send(HttpRequest request, Done<HttpReply> done) override {
        ++count;
        client.send(std::move(request), std::move(done));
    }
    int count = 0;

private:
    HttpClient &client;
};

/// A tray whose agent comes and goes, with polls some hundred times as frequent as a user's.
struct FlappingJourney : Journey {
    FlappingJourney() : Journey(300) {}

    /// Lets the tray poll `polls` times, after a warm-up, while an agent fails and returns in ways that `seed` chooses;
    /// expects that it follows to the end and that nothing has grown.
    void flap(int polls, quint32 seed);

private:
    void pollTimes(int times);
    void disturb(quint32 dice);

    CountingHttp counted{http};
    int turnedOn = 0;
};

} // namespace korvel::test
