#pragma once

#include "platform/http_client.h"

#include <QObject>
#include <memory>

namespace korvel {

/// Answers a request with an error once its sender has returned to the event loop, so that callers see one order of
/// events. What has not been told when `context` goes, the completion reports itself.
inline void refuseLater(QObject &context, Done<HttpReply> done, Error why) {
    auto refused = std::make_shared<Done<HttpReply>>(std::move(done));
    QMetaObject::invokeMethod(
        &context, [refused, why = std::move(why)] { (*refused)(why); }, Qt::QueuedConnection);
}

} // namespace korvel
