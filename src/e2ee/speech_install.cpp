#include "e2ee/speech_install.h"

#include "app/wording.h"
#include "e2ee/requests.h"

namespace korvel {

void SpeechInstall::e2AsrInstall() {
    e2Post(api, installSpeechRequest(), alive.guard([this](const std::optional<QJsonObject> &reply) {
        if (replyOk(reply))
            return hooks.showHUD({.text = L(u"已开始下载语音识别，安装完成后将在菜单中显示",
                                            u"Downloading speech recognition. The menu will show when it's ready."),
                                  .secs = Seconds(4)});
        hooks.showHUD({.text = L(u"无法开始安装：", u"Couldn't start the installation: ") + errText(reply),
                       .secs = Seconds(4),
                       .error = true});
    }));
}

} // namespace korvel
