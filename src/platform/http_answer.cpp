#include "platform/http_answer.h"

#include <algorithm>

namespace korvel {

namespace {

constexpr qsizetype LONGEST_HEAD = 64 << 10;
constexpr QByteArrayView PROTOCOL = "HTTP/1.";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// A number without sign or blanks that surely fits.
std::optional<qint64> numberOf(const QByteArray &digits, int base) {
    const auto isOneOfBase = [base](char c) {
        return isDigit(c) || (base == 16 && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')));
    };
    if (digits.isEmpty() || digits.size() > 15 || !std::all_of(digits.begin(), digits.end(), isOneOfBase))
        return std::nullopt;
    return digits.toLongLong(nullptr, base);
}

bool namesClose(const QByteArray &tokens) {
    const auto words = tokens.split(',');
    return std::any_of(words.begin(), words.end(), [](const QByteArray &word) { return word.trimmed() == "close"; });
}

} // namespace

void HttpAnswer::feed(QByteArrayView bytes) {
    begun = begun || !bytes.isEmpty();
    while (!bytes.isEmpty() && !isOver()) {
        const bool inBody = part == Part::Counted || part == Part::Chunk || part == Part::UntilEnd;
        bytes = bytes.sliced(inBody ? takeBody(bytes) : takeLine(bytes));
    }
    if (!bytes.isEmpty())
        persistent = false; // nobody knows what they belong to
}

void HttpAnswer::end() {
    persistent = false;
    if (part == Part::UntilEnd)
        part = Part::Whole;
    else if (!isOver())
        fail(ErrorKind::Interrupted, begun ? "closed before the answer was whole" : "closed without an answer");
}

Result<HttpReply> HttpAnswer::outcome() {
    if (error)
        return *error;
    return std::move(reply);
}

qsizetype HttpAnswer::takeLine(QByteArrayView bytes) {
    const qsizetype feedAt = bytes.indexOf('\n');
    const qsizetype taken = feedAt < 0 ? bytes.size() : feedAt + 1;
    const bool ofChunk = part == Part::ChunkSize || part == Part::ChunkEnd;
    line.append(bytes.first(taken));
    if (!ofChunk)
        head += taken;
    if (std::max(head, line.size()) > LONGEST_HEAD) {
        fail(ErrorKind::TooLarge, "headers without end");
    } else if (ofChunk || count(taken)) {
        // What speaks another protocol may never send a line feed.
        if (part == Part::Status && !line.startsWith(PROTOCOL.first(std::min(line.size(), PROTOCOL.size()))))
            fail(ErrorKind::UnreadableAnswer, "not HTTP/1");
        else if (feedAt >= 0)
            interpret(QByteArrayView(line).chopped(line.endsWith("\r\n") ? 2 : 1));
    }
    if (feedAt >= 0)
        line.clear();
    return taken;
}

void HttpAnswer::interpret(QByteArrayView content) {
    switch (part) {
    case Part::Status:
        return readStatus(content);
    case Part::Headers:
        return content.isEmpty() ? beginBody() : readHeader(content);
    case Part::ChunkSize:
        return readChunkSize(content);
    case Part::ChunkEnd:
        part = Part::ChunkSize;
        return content.isEmpty() ? void() : fail(ErrorKind::UnreadableAnswer, "a chunk longer than it says");
    case Part::Trailers:
        if (content.isEmpty())
            part = Part::Whole;
        return;
    case Part::Counted:
    case Part::Chunk:
    case Part::UntilEnd:
    case Part::Whole:
        return;
    }
}

void HttpAnswer::readStatus(QByteArrayView content) {
    const QByteArrayView rest = content.sliced(std::min(content.size(), PROTOCOL.size())); // "1 200 OK"
    const bool good = rest.size() >= 5 && (rest[0] == '0' || rest[0] == '1') && rest[1] == ' ' && rest[2] != '0' &&
                      std::all_of(rest.begin() + 2, rest.begin() + 5, isDigit) && (rest.size() == 5 || rest[5] == ' ');
    if (!good)
        return fail(ErrorKind::UnreadableAnswer, "no status line");
    reply.status = rest.sliced(2, 3).toInt();
    persistent = rest[0] == '1';
    part = Part::Headers;
}

void HttpAnswer::readHeader(QByteArrayView content) {
    const qsizetype colon = content.indexOf(':');
    const bool continues = content.startsWith(' ') || content.startsWith('\t');
    if (content.contains('\0') || (colon < 0 && !continues))
        return fail(ErrorKind::UnreadableAnswer, "no header line");
    if (continues)
        return; // of a header that nobody looks at
    const QByteArray name = content.first(colon).trimmed().toByteArray().toLower();
    const QByteArray value = content.sliced(colon + 1).trimmed().toByteArray().toLower();
    if (name == "content-length") {
        const auto number = numberOf(value, 10);
        if (!number || length.value_or(*number) != *number)
            return fail(ErrorKind::UnreadableAnswer, "no length");
        length = number;
    } else if (name == "transfer-encoding") {
        if (value != "chunked")
            return fail(ErrorKind::UnreadableAnswer, "a transfer encoding that nobody asked for");
        chunked = true;
    } else if (name == "connection" && namesClose(value)) {
        persistent = false;
    }
}

void HttpAnswer::beginBody() {
    if (reply.status == 101)
        return fail(ErrorKind::UnreadableAnswer, "a protocol that nobody asked for");
    if (reply.status < 200) { // an announcement; the answer follows
        chunked = false;
        length.reset();
        part = Part::Status;
    } else if (reply.status == 204 || reply.status == 304) {
        part = Part::Whole;
    } else if (chunked) {
        part = Part::ChunkSize;
    } else {
        left = length.value_or(0);
        part = !length ? Part::UntilEnd : left > 0 ? Part::Counted : Part::Whole;
    }
}

void HttpAnswer::readChunkSize(QByteArrayView content) {
    const qsizetype extension = content.indexOf(';');
    const auto size = numberOf((extension < 0 ? content : content.first(extension)).trimmed().toByteArray(), 16);
    if (!size)
        return fail(ErrorKind::UnreadableAnswer, "no chunk");
    left = *size;
    part = left > 0 ? Part::Chunk : Part::Trailers;
}

qsizetype HttpAnswer::takeBody(QByteArrayView bytes) {
    const qsizetype taken = part == Part::UntilEnd ? bytes.size() : std::min<qint64>(bytes.size(), left);
    if (!count(taken))
        return taken;
    reply.body.append(bytes.first(taken));
    if (part == Part::UntilEnd)
        return taken;
    left -= taken;
    if (left == 0)
        part = part == Part::Chunk ? Part::ChunkEnd : Part::Whole;
    return taken;
}

bool HttpAnswer::count(qsizetype more) {
    total += more;
    if (total > limit)
        fail(ErrorKind::TooLarge, "more than the request allows");
    return !error;
}

void HttpAnswer::fail(ErrorKind kind, const char *detail) { error = Error{kind, QString::fromLatin1(detail)}; }

} // namespace korvel
