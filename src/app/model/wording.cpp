#include "app/model/wording.h"

#include "base/plain_text.h"

namespace korvel {

QString errText(const Result<QJsonObject> &answer) {
    if (answer) {
        const QJsonValue error = answer->value(u"error");
        if (error.isString())
            return shortened(error.toString());
    }
    return L(u"Korvel 未响应，请稍后重试", u"Korvel isn't responding. Try again later.");
}

} // namespace korvel
