#include "simulator/tour/steps.h"

#include "simulator/tour/menu_look.h"
#include "simulator/tour/window_checks.h"

#include <QJsonObject>
#include <QSet>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int DOWNLOAD_TAKES_MS = 10000;

QString install(Tour &tour) {
    tour.home().changeScenario({{u"e2ee"_s, QJsonObject{{u"asrMs"_s, DOWNLOAD_TAKES_MS}}}});
    const QString entry = tour.say(u"安装语音识别（约 180 MB）…"_s, u"Install Speech Recognition (180 MB)…"_s);
    if (QString wrong = expectEntry(tour, entry, true); !wrong.isEmpty())
        return wrong;
    if (!tour.panel().click(entry))
        return u"the menu has no entry "_s + entry;
    if (QString wrong = expectNotice(tour, tour.say(u"已开始下载语音识别，安装完成后将在菜单中显示"_s,
                                                    u"Downloading speech recognition. The menu will show when it's "
                                                    u"ready."_s));
        !wrong.isEmpty())
        return wrong;
    return tour.screenshot(u"speech-starts"_s) ? QString() : u"no screenshot"_s;
}

// The percent follows the download; the menu is looked at while it does.
QString progress(Tour &tour) {
    const QString beginning = tour.say(u"正在安装语音识别… "_s, u"Installing speech recognition… "_s);
    const QString ready = tour.say(u"语音识别已安装，可在手机上选择「我的电脑识别」"_s,
                                   u"Speech recognition is installed. Choose My computer on your phone."_s);
    if (!tour.waitUntil([&] { return !entryThatBegins(tour, beginning).isEmpty(); }, NEXT_POLL))
        return u"the menu does not say that it installs"_s;
    if (QString wrong = lookAtMenu(tour, u"speech-progress"_s); !wrong.isEmpty())
        return wrong;
    QSet<QString> seen;
    const auto installed = [&] {
        if (const QString now = entryThatBegins(tour, beginning); !now.isEmpty())
            seen.insert(now);
        return !entryThatBegins(tour, ready).isEmpty();
    };
    if (!tour.waitUntil(installed, std::chrono::milliseconds(DOWNLOAD_TAKES_MS) + NEXT_POLL))
        return u"the menu does not say that it is installed"_s;
    if (seen.size() < 2)
        return u"the percent did not move"_s;
    if (requestsTo(tour, u"/e2ee/asr/install"_s) != 1)
        return u"the installation was not asked for once"_s;
    return lookAtMenu(tour, u"speech-installed"_s);
}

} // namespace

QList<Step> speechSteps() {
    return {{u"speech recognition is installed from the menu"_s, install},
            {u"the menu shows the percent until it is there"_s, progress}};
}

} // namespace korvel::sim
