#pragma once

#include "base/result.h"
#include "base/unique_function.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <memory>
#include <type_traits>
#include <utility>

namespace korvel {

/// The completion of an operation, called exactly once. If it is destroyed uncalled, it reports ErrorKind::Dropped on
/// the main thread.
template <class T>
class Done {
public:
    Done() = default;
    template <class F>
    requires(!std::is_same_v<std::remove_cvref_t<F>, Done>) Done(F f) : call(std::move(f)) {}
    Done(Done &&o) noexcept : call(std::exchange(o.call, nullptr)) {}
    Done &operator=(Done &&o) noexcept {
        Done old(std::move(*this));
        call = std::exchange(o.call, nullptr);
        return *this;
    }
    ~Done() {
        if (!call)
            return;
        QCoreApplication *app = QCoreApplication::instance();
        if (!app || QThread::currentThread() == app->thread()) {
            (*this)(Error{ErrorKind::Dropped, {}});
            return;
        }
        auto late = std::make_shared<UniqueFunction<void(Result<T>)>>(std::move(call));
        QMetaObject::invokeMethod(
            app,
            [late] {
                (*late)(Error{ErrorKind::Dropped, {}});
            },
            Qt::QueuedConnection);
    }

    void operator()(Result<T> r) { std::exchange(call, nullptr)(std::move(r)); }

private:
    UniqueFunction<void(Result<T>)> call;
};

} // namespace korvel
