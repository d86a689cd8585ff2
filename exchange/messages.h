#pragma once

#include "ports/server_client.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <variant>

namespace korvel::exchange {

// What the tray and korvel-exchange write to each other: one JSON object on standard input, JSON objects on standard
// output, one a line. Bytes are base64.

/// The most bytes of a task.
constexpr qint64 MAX_TASK = 1 << 20;

/// One HTTPS exchange. With a file, the body of a response of status 200 goes there.
struct HttpTask {
    ServerRequest request; ///< Its deadline is the tray's business, and stays there.
    QString file = {};
    bool operator==(const HttpTask &) const = default;
};

/// The SHA-256 of a regular file.
struct HashTask {
    QString file;
    bool operator==(const HashTask &) const = default;
};

/// The one thing that a run does.
using Task = std::variant<HttpTask, HashTask, SignatureProof>;

QByteArray toJson(const Task &task);
/// None for what is no task.
std::optional<Task> parseTask(const QByteArray &json);

/// Bytes of a body so far, and in all (0: not known).
struct Progress {
    qint64 got = 0;
    qint64 expected = 0;
};

struct Hash {
    QString sha256; ///< Lower-case hexadecimal digits.
};

struct Verdict {
    bool valid = false;
};

/// One line of output. All but Progress are the last one.
using Line = std::variant<Progress, HttpReply, Hash, Verdict, Error>;

/// With the line feed at its end.
QByteArray toJson(const Line &line);
/// None for what is no line.
std::optional<Line> parseLine(const QByteArray &json);

} // namespace korvel::exchange
