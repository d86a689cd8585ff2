#include "app/model/wording.h"

#include "base/plain_text.h"

namespace korvel {

QString errText(const Result<QJsonObject> &response) {
    if (response) {
        const QJsonValue error = response->value(u"error");
        if (error.isString())
            return shortened(error.toString());
    }
    return L(u"Korvel 未响应，请稍后重试", u"Korvel isn't responding. Try again later.");
}

} // namespace korvel
