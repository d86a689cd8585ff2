#include "simulator/tour/controls.h"
#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int DOWNLOAD_TAKES_MS = 10000;

void install(Tour &tour) {
    change(tour, {{u"e2ee"_s, QJsonObject{{u"asrMs"_s, DOWNLOAD_TAKES_MS}}}});
    const QString entry = L(u"安装语音识别（约 180 MB）…", u"Install Speech Recognition (180 MB)…");
    expectEntry(tour, entry, true);
    choose(tour, entry);
    expectNotice(tour, L(u"已开始下载语音识别，安装完成后将在菜单中显示",
                         u"Downloading speech recognition. The menu will show when it's ready."));
    screenshot(tour, u"speech-starts"_s);
}

/// The percentage follows the download, also while the menu is open.
void progress(Tour &tour) {
    const QString beginning = L(u"正在安装语音识别… ", u"Installing speech recognition… ");
    expect(tour.waitUntil([&] { return !entryThatBegins(tour, beginning).isEmpty(); }, NEXT_POLL),
           u"the menu does not say that it installs"_s);
    captureMenu(tour, u"speech-progress"_s);
    expectProgress(tour, beginning, std::chrono::milliseconds(DOWNLOAD_TAKES_MS) + NEXT_POLL);
    expect(!entryThatBegins(tour, L(u"语音识别已安装，可在手机上选择「我的电脑识别」",
                                    u"Speech recognition is installed. Choose My computer on your phone."))
                .isEmpty(),
           u"the menu does not say that it is installed"_s);
    expectRequests(tour, u"/e2ee/asr/install"_s, 1);
    captureMenu(tour, u"speech-installed"_s);
}

} // namespace

QList<Step> speechSteps() {
    return {{u"speech recognition is installed from the menu"_s, install},
            {u"the menu shows the percent until it is there"_s, progress}};
}

} // namespace korvel::sim
