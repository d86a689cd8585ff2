#include "e2ee/speech_install.h"

#include "e2ee/e2ee_views.h"
#include "e2ee/requests.h"

namespace korvel {

void SpeechInstall::e2AsrInstall() {
    e2Post(api, installSpeechRequest(), alive.guard([this](const Result<QJsonObject> &reply) {
        notices.showHUD(agentOk(reply) ? speechDownloadNotice() : noSpeechDownloadNotice(reply));
    }));
}

} // namespace korvel
