// The agent's health responses and permission replies, through the rules to everything that shows them. The input is a
// list of replies: one with "items" is a permission reply, one that is no object is silence.
#include "app/model/wording.h"
#include "base/json.h"
#include "base/plain_text.h"
#include "e2ee/alarms.h"
#include "e2ee/approval.h"
#include "e2ee/pair_view.h"
#include "e2ee/prompts.h"
#include "e2ee/report.h"
#include "fuzz/json_mutator.h"
#include "permissions/permission_rules.h"
#include "permissions/permission_views.h"
#include "status/health.h"
#include "status/startup_report.h"
#include "status/status_view.h"
#include "ui/menu/menu_view.h"

using namespace korvel;
using namespace Qt::StringLiterals;
using fuzz::require;

namespace {

constexpr qsizetype MAX_ENTRIES = 3 * MAX_ELEMENTS + 24;

bool isBounded(const QString &text) { return text.size() <= MAX_TEXT; }

void checkMenu(const QList<MenuEntry> &entries) {
    require(!entries.isEmpty() && entries.size() <= MAX_ENTRIES, "the number of menu entries");
    for (const MenuEntry &entry : entries) {
        require(isBounded(entry.title) && isBounded(entry.toolTip) && entry.detail.size() <= MAX_TEXT + 8, "lengths");
        require(fuzz::isDrawable(keepOrder(entry.title + entry.detail)), "a title is one plain line");
        require(fuzz::isOneLine(entry.toolTip), "a tool tip is one line");
    }
}

void checkAlert(const AlertView &alert) {
    require(fuzz::isDrawable(keepOrder(alert.title)) && isBounded(alert.title), "the title of an alert");
    QString lines = keepOrder(alert.fromOutside);
    require(isBounded(alert.fromOutside) && fuzz::isDrawable(lines.remove(u'\n')), "the text of an alert");
}

void checkState(const TrayState &state) {
    require(e2Pending(state.e2ee.e2).size() <= MAX_ELEMENTS && e2Alarms(state.e2ee.e2).size() <= MAX_ELEMENTS &&
                state.permissions.permsMissing.size() <= MAX_ELEMENTS &&
                state.permissions.permItems.size() <= MAX_ELEMENTS,
            "the number of elements");
    require(isBounded(state.health.account) && isBounded(state.health.agentVer), "the texts of the state");
}

void checkPairView(const Situation &s, PairState &pairing) {
    const PairUpdate update =
        pairView(s.state.e2ee.e2, pairing,
                 {.bound = s.bound, .authDead = s.state.health.authDead, .accountGone = s.state.health.accountGone});
    require(update.view.code.size() <= 16 && fuzz::isDrawable(keepOrder(update.view.code)), "the code is one line");
    for (QString text : {update.view.line, update.view.hint, update.view.error})
        require(isBounded(text) && fuzz::isDrawable(keepOrder(text).remove(u'\n')), "the texts of the pairing window");
}

void checkViews(const Situation &s, PairState &pairing) {
    checkState(s.state);
    require(fuzz::isDrawable(keepOrder(singleLine(statusLine(s)))), "the status line");
    require(isBounded(iconView(s).toolTip) && fuzz::isOneLine(iconView(s).toolTip), "the tool tip of the icon");
    checkMenu(menuView(s).entries);
    checkPairView(s, pairing);
    startupNotice(s);
    require(settingsAddress(s.state.permissions.permItems.value(0).value(u"pane")).value_or(u"x"_s).size() <= MAX_TEXT,
            "the address of a settings pane");
}

/// A report raises each of its prompts once.
void checkPrompts(Situation s) {
    E2State &e2ee = s.state.e2ee;
    E2Prompt prompt;
    const PromptContext context{.bound = s.bound, .authDead = s.state.health.authDead};
    qsizetype left = e2Pending(e2ee.e2).size() + e2Alarms(e2ee.e2).size() + 1;
    while ((prompt = takePrompt(e2ee, s.state.pairing, context)).kind != E2Prompt::Kind::None) {
        require(left-- > 0, "each prompt is shown once");
        if (prompt.kind == E2Prompt::Kind::Approval)
            checkAlert(approveAlert(prompt.subject, prompt.subject.value(u"name").toString()));
        else if (prompt.kind == E2Prompt::Kind::Alarm)
            checkAlert(alarmAlert(prompt.subject));
    }
    const E2State before = e2ee;
    require(takePrompt(e2ee, s.state.pairing, context) == E2Prompt{} && e2ee == before, "no prompt appears again");
}

void apply(TrayState &state, const QJsonValue &reply, const HealthContext &context) {
    const QJsonObject object = reply.toObject();
    if (object.contains(u"items")) {
        require(boundedPerms(boundedPerms(object)) == boundedPerms(object), "bounds are exact");
        return applyPermReply(state.permissions, boundedPerms(object));
    }
    const QJsonObject bounded = boundedHealth(object);
    require(boundedHealth(bounded) == bounded, "bounds are exact");
    const auto response = reply.isObject() ? healthResponse(bounded) : Error{ErrorKind::TimedOut, {}};
    applyHealth(state, response, context);
    TrayState again = state;
    const HealthEffects effects = applyHealth(again, response, context);
    require(again == state && effects.notice == HealthEffects::Notice::None, "the same response changes nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    ZH = input.flag();
    Situation s{.isCn = input.flag(), .version = u"1.2.3"_s, .bound = !input.flag(), .plistExists = !input.flag()};
    s.timing.longConnecting = input.flag();
    s.state.menu.optionKey = input.flag();
    PairState pairing{.pairPreview = input.flag()}; // of the window, which stays open
    s.server = u"intl.example:443"_s;
    const HealthContext context{.now = Instant(std::chrono::hours(9)), .bound = s.bound, .username = u"ann"_s};
    const QJsonArray replies = QJsonDocument::fromJson(input.bytes).array();
    for (qsizetype i = 0; i < std::min<qsizetype>(replies.size(), 4); ++i) {
        apply(s.state, replies.at(i), context);
        checkViews(s, pairing);
        const TrayState before = s.state;
        checkPrompts(s);
        require(s.state == before, "views change nothing");
    }
    return 0;
}
