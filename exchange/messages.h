#pragma once

#include "ports/server_client.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <variant>

namespace korvel::exchange {

// Messages between the tray and korvel-exchange: one JSON object on standard input, one JSON object per line on
// standard output. Bytes are base64.

/// Maximum size of a task, in bytes.
constexpr qint64 MAX_TASK = 1 << 20;

/// One HTTPS exchange. If `file` is set, the body of a response of status 200 is written there.
struct HttpTask {
    ServerRequest request; ///< Its deadline is enforced by the tray and not transmitted.
    QString file = {};
    bool operator==(const HttpTask &) const = default;
};

/// The SHA-256 of a regular file.
struct HashTask {
    QString file;
    bool operator==(const HashTask &) const = default;
};

/// The single task of a run.
using Task = std::variant<HttpTask, HashTask, SignatureProof>;

QByteArray toJson(const Task &task);
/// None if the JSON is not a valid task.
std::optional<Task> parseTask(const QByteArray &json);

/// Bytes of the body so far and in total (0: unknown).
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

/// One line of output. Any line but Progress is the last one.
using Line = std::variant<Progress, HttpReply, Hash, Verdict, Error>;

/// Includes the trailing line feed.
QByteArray toJson(const Line &line);
/// None if the JSON is not a valid line.
std::optional<Line> parseLine(const QByteArray &json);

} // namespace korvel::exchange
