#pragma once

#include "base/alive.h"
#include "base/scheduler.h"
#include "exchange/messages.h"
#include "ports/programs.h"
#include "ports/server_client.h"

#include <functional>
#include <memory>
#include <set>

namespace korvel {

/// ServerClient through korvel-exchange: one run per call. The task is passed through standard input, and the
/// environment contains only the variables that the program needs.
class ExchangeClient final : public ServerClient {
public:
    /// `program`: path of korvel-exchange.
    ExchangeClient(Programs &programs, Scheduler &scheduler, QString program);
    /// Stops the runs in flight; their completions report Dropped.
    ~ExchangeClient() override;
    void send(ServerRequest request, Done<HttpReply> done) override;
    void download(ServerRequest request, const QString &file, std::function<void(qint64 got, qint64 expected)> progress,
                  Done<HttpReply> done) override;
    void hash(const QString &file, Done<QString> done) override;
    void verify(const SignatureProof &proof, Done<bool> done) override;

private:
    class Run;
    template <class Wanted, class Value, class ValueOf>
    void start(const exchange::Task &task, milliseconds timeout,
               std::function<void(const exchange::Progress &)> progress, ValueOf valueOf, Done<Value> done);

    Programs &programs;
    Scheduler &scheduler;
    const QString program;
    std::set<std::shared_ptr<Run>> runs; ///< In flight.
    Alive alive;
};

} // namespace korvel
