#pragma once

#include <QString>
#include <utility>
#include <variant>

namespace korvel {

/// The kind of failure. Callers switch on it. The detail is for the log, or for the user where the operation says so.
enum class ErrorKind {
    Dropped,            ///< The operation was discarded before it completed.
    InvalidRequest,     ///< The request could not be built, or is not allowed.
    Offline,            ///< No network: only loopback interfaces are up.
    HostNotFound,       ///< The host name has no address.
    Unreachable,        ///< No connection could be established.
    InsecureConnection, ///< TLS failed, or the certificate is not trusted.
    Interrupted,        ///< The connection ended before the response was complete.
    TimedOut,           ///< The deadline passed.
    TooLarge,           ///< The response exceeds its size limit.
    NotSaved,           ///< The response could not be written to its file.
    UnreadableResponse, ///< The response is malformed or unexpected.
    Refused,            ///< The other side declined the request.
};

struct Error {
    ErrorKind kind = ErrorKind::Dropped;
    QString detail;
};

/// A value of type T, or an Error.
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
