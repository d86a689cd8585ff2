#include "app/model/wording.h"
#include "simulator/gallery/gallery_case.h"
#include "ui/widgets/pair_window.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

struct Sample {
    const char *name;
    QByteArray report;
    PairContext context = {.bound = true};
    PairState before = {};
    QString error = {}; ///< The agent's message after a failed refresh.
};

std::shared_ptr<void> show(const Sample &sample) {
    PairState pairing = sample.before;
    PairView view = pairView(QJsonDocument::fromJson(sample.report).object(), pairing, sample.context).view;
    if (!sample.error.isEmpty())
        view.error = sample.error;
    auto window = std::make_shared<PairWindow>(PairPanel::Events{.buttonClicked = [] {}, .renewClicked = [] {}});
    window->present(view, OpenedBy::User);
    return window;
}

} // namespace

QList<Case> pairCases() {
    const QByteArray code = R"({"state":"pending","pair":{"show":"482913"}})";
    const QByteArray trouble = L(u"密钥库已锁定。", u"The key store is locked.").toUtf8();
    const QString busy =
        L(u"正在处理另一个配对码，请一分钟后重试。", u"The agent is busy with another code. Try again in a minute.");
    const PairContext signedOut{.bound = true, .authDead = true};
    const QList<Sample> samples{
        {"code", code},
        {"wrong-code", R"({"state":"pending","pair":{"show":"170266","wrong":true}})"},
        {"refreshing", code, {.bound = true}, {.pairRenewing = true}},
        {"refresh-failed", code, {.bound = true}, {}, busy},
        {"no-code-yet", R"({"state":"pending"})"},
        {"phone-not-signed-in", R"({"state":"waiting"})"},
        {"code-expired", R"({"state":"expired"})"},
        {"paired", R"({"state":"pending","pair":{"show":"482913","paired":true}})"},
        {"success", R"({"state":"active"})", {.bound = true}, {.pairSawCode = true}},
        {"turning-on", R"({"state":"starting","required":true})"},
        {"trouble", R"({"state":"off","required":true,"trouble":")" + trouble + "\"}"},
        {"long-trouble", R"({"state":"other","required":true,"trouble":")" + trouble.repeated(8) + "\"}"},
        {"unbroken-trouble", R"({"state":"other","trouble":")" + unbrokenName().toUtf8() + "\"}"},
        {"not-paired", R"({"state":"approved"})"},
        {"too-many-codes", R"({"state":"pair-failed"})"},
        {"denied", R"({"state":"rejected"})"},
        {"removed", R"({"state":"revoked"})"},
        {"suspended", R"({"state":"suspended"})"},
        {"not-signed-in", "{}", {}},
        {"signed-out", R"({"state":"approved"})", signedOut},
        {"account-deleted", "{}", {.bound = true, .authDead = true, .accountGone = true}},
    };
    QList<Case> cases;
    for (const Sample &sample : samples)
        cases.append({u"Pairing window"_s, QLatin1StringView(sample.name), [sample] { return show(sample); }});
    return cases;
}

} // namespace korvel::gallery
