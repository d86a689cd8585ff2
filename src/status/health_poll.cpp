#include "status/health_poll.h"

#include "app/model/situation.h"
#include "app/model/wording.h"
#include "service/agent_config.h"
#include "service/job_state.h"

#include <utility>

namespace korvel {

namespace {

constexpr milliseconds PERIOD = 3s;
constexpr milliseconds TIME_LIMIT = 2s;
constexpr int MAX_POLLS_IN_FLIGHT = 3;

} // namespace

Notice lostSignInNotice(HealthEffects::Notice which) {
    return {.text = which == HealthEffects::Notice::AccountDeleted
                        ? L(u"账号已注销，请使用其他账号登录",
                            u"This account was deleted. Sign in with a different account.")
                        : L(u"登录已失效，请重新登录", u"You've been signed out. Sign in again."),
            .secs = Seconds(6),
            .error = true};
}

HealthPoll::HealthPoll(TrayState &s, const FixedConfig &f, const AgentConfig &c, AgentApi &a, ServiceControl &sc,
                       Scheduler &sch, Notices &no, Renderer &re, Hooks h)
    : state(s), fixed(f), config(c), api(a), services(sc), scheduler(sch), notices(no), renderer(re),
      hooks(std::move(h)) {}

void HealthPoll::start() {
    timer = scheduler.every(PERIOD, [this] { tick(); });
}

void HealthPoll::tick() {
    // An agent that accepts connections and never responds must not make them pile up.
    if (open < MAX_POLLS_IN_FLIGHT)
        poll();
}

void HealthPoll::poll(std::function<void()> then) {
    ++open;
    api.send({.path = QStringLiteral("/health"), .timeout = TIME_LIMIT, .keep = boundedHealth, .repeats = true},
             alive.guard([this, generation = ++sent, then = std::move(then)](Result<QJsonObject> r) {
                 --open;
                 received(generation, r, then);
             }));
}

void HealthPoll::received(quint64 generation, const Result<QJsonObject> &reply, const std::function<void()> &then) {
    // Polls overlap: the response to an older poll is out of date.
    if (generation < applied)
        return follow({}, then);
    applied = generation;
    const AgentCfg cfg = config.readCfg();
    follow(applyHealth(state, healthResponse(reply),
                       {.now = scheduler.now(), .bound = cfg.bound(), .username = cfg.username}),
           then);
}

void HealthPoll::follow(const HealthEffects &effects, const std::function<void()> &then) {
    if (effects.notice != HealthEffects::Notice::None)
        notices.showHUD(lostSignInNotice(effects.notice));
    if (effects.fetchPerms)
        hooks.fetchPerms();
    renderer.stateChanged();
    if (effects.checkJob) // the missing response is already shown; the job's state follows
        return checkJob(then);
    // Comes last because it opens windows. `then` may destroy this object.
    auto react = alive.guard([this] { hooks.e2Prompt(); });
    if (then)
        then();
    if (effects.reactToReport)
        react();
}

void HealthPoll::checkJob(const std::function<void()> &then) {
    if (then)
        afterJobCheck.push_back(then);
    // A hanging service manager must not use up the background threads: later polls wait for the lookup in flight.
    if (std::exchange(checkingJob, true))
        return;
    scheduler.background([&services = services, label = fixed.AGENT_LABEL] { return services.print(label); },
                         alive.guard([this, changes = state.health.jobChanges](ServiceResult lookup) {
                             checkingJob = false;
                             if (state.health.jobChanges == changes)
                                 applyJobLookup(state.health, lookup);
                             renderer.stateChanged();
                             for (const auto &waiting : std::exchange(afterJobCheck, {}))
                                 waiting();
                         }));
}

} // namespace korvel
