#include "account/net_error.h"

#include "app/model/wording.h"
#include "base/log.h"

namespace korvel {

QString netErrorText(const std::optional<Error> &error) {
    if (!error)
        return L(u"无法连接服务器，请检查网络后重试",
                 u"Can't connect to the server. Check your network and try again.");
    if (!error->detail.isEmpty())
        log(QStringLiteral("[net] ") + error->detail);
    switch (error->kind) {
    case ErrorKind::Offline:
    case ErrorKind::Interrupted:
        return L(u"这台 Mac 未连接网络，请连接后重试", u"This Mac is offline. Connect to the internet and try again.");
    case ErrorKind::TimedOut:
        return L(u"服务器响应超时，请稍后重试", u"The server timed out. Try again later.");
    case ErrorKind::HostNotFound:
        return L(u"无法找到服务器，请检查网络后重试", u"Can't find the server. Check your network and try again.");
    case ErrorKind::InsecureConnection:
        return L(u"无法建立安全连接，请更换网络后重试", u"Can't establish a secure connection. Try another network.");
    case ErrorKind::Dropped:
    case ErrorKind::InvalidRequest:
    case ErrorKind::Unreachable:
    case ErrorKind::TooLarge:
    case ErrorKind::NotSaved:
    case ErrorKind::UnreadableResponse:
    case ErrorKind::Refused:
        break;
    }
    return L(u"无法连接服务器，请稍后重试", u"Can't connect to the server. Try again later.");
}

} // namespace korvel
