#pragma once

#include <QString>
#include <utility>
#include <variant>

namespace korvel {

/// What kind of failure ended an operation; callers switch on it, the detail is for the log.
enum class ErrorKind {
    Dropped,            ///< The operation went away without an answer.
    InvalidRequest,     ///< The request could not be formed, or was not allowed to leave.
    Offline,            ///< No network: only loopback interfaces are up.
    HostNotFound,       ///< The name has no address.
    Unreachable,        ///< No connection could be made.
    InsecureConnection, ///< TLS failed, or the certificate is not to be trusted.
    Interrupted,        ///< The connection ended before the answer was whole.
    TimedOut,           ///< The deadline passed.
    TooLarge,           ///< The answer is larger than its limit.
    NotSaved,           ///< What arrived could not be written to its file.
    UnreadableResponse, ///< An answer came that is not what was asked for.
    Refused,            ///< The other side says no; the detail is its sentence, for the user.
};

struct Error {
    ErrorKind kind = ErrorKind::Dropped;
    QString detail;
};

/// A value of type T, or the Error that took its place.
template <class T>
class Result {
public:
    Result(T v) : held(std::move(v)) {}
    Result(Error e) : held(std::move(e)) {}

    bool ok() const { return held.index() == 0; }
    explicit operator bool() const { return ok(); }
    T &value() { return std::get<0>(held); }
    const T &value() const { return std::get<0>(held); }
    const T *operator->() const { return &value(); }
    const Error &error() const { return std::get<1>(held); }

private:
    std::variant<T, Error> held;
};

} // namespace korvel
