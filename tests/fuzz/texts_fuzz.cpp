// Texts from outside: names, lines, directions, codes and base64.
#include "account/server_api.h"
#include "base/plain_text.h"
#include "e2ee/pair_code.h"
#include "fuzz/fuzz.h"
#include "update/manifest.h"

using namespace korvel;
using namespace Qt::StringLiterals;
using fuzz::require;

namespace {

int clusters(const QString &text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (nextCluster(finder) >= 0)
        ++count;
    return count;
}

QString withoutDirections(QString text) { return text.removeIf(fuzz::isDirectionMark); }

void checkName(const QString &text) {
    const QString name = shownName(text);
    require(clusters(name) <= 64 && name.size() <= 64 * 24 + 1, "the length of a name");
    require(fuzz::isOneLine(name) && name == withoutDirections(name), "a name is one plain line");
    require(!name.startsWith(u' ') && !name.endsWith(u' ') && !name.contains(u"  "), "the spaces of a name");
    require(shownName(name) == name, "a shown name stays as it is");
}

void checkLines(const QString &text, qsizetype limit) {
    const QString line = singleLine(text, limit), lines = multiLine(text), cut = shortened(text, limit);
    require(line.size() <= limit && fuzz::isOneLine(line) && singleLine(line, limit) == line, "one line");
    require(lines.size() <= MAX_TEXT && fuzz::isOneLine(QString(lines).remove(u'\n')), "several lines");
    require(multiLine(lines) == lines, "shown lines stay as they are");
    require(cut.size() <= limit && (cut == text || cut.endsWith(u'…')) && shortened(cut, limit) == cut, "a cut text");
    require(!text.isValidUtf16() || cut.isValidUtf16(), "a cut leaves no half character");
}

void checkOrder(const QString &text) {
    const QString ordered = keepOrder(text);
    require(withoutDirections(ordered) == withoutDirections(text), "order keeps the text");
    require(keepOrder(ordered) == ordered, "ordered text stays as it is");
    for (const QString &line : ordered.split(u'\n'))
        require(fuzz::isDrawable(singleLine(line, line.size() + 1)), "isolates are closed within their line");
}

void checkCode(const QString &text, qsizetype caret) {
    const CodeText field = formatCode({text, caret});
    const QString digits = codeDigits(text);
    require(digits.size() <= 6 &&
                std::all_of(digits.begin(), digits.end(), [](QChar c) { return c >= u'0' && c <= u'9'; }),
            "six digits");
    require(field.text == showCode(digits) && codeDigits(field.text) == digits, "a field shows the digits");
    require(field.caret >= 0 && field.caret <= field.text.size(), "the caret is in the field");
    require(codeDigits(field.text.first(field.caret)) ==
                codeDigits(text.first(std::clamp<qsizetype>(caret, 0, text.size()))),
            "the caret is behind the same digit");
    require(formatCode(field) == field, "a field stays as it is");
}

void checkBase64(const QString &text) {
    FixedConfig config;
    config.UPDATE_PUBKEY = QString(43, u'A') + u'=';
    const auto proof = updateSignature(config, {.sig = text});
    if (!proof)
        return;
    const qsizetype padding = text.endsWith(u"==") ? 2 : text.endsWith(u'=') ? 1 : 0;
    require(proof->signature.size() == text.size() / 4 * 3 - padding, "whole groups of four");
    require(fuzz::isPlain(text.chopped(padding), "+/"), "the alphabet");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const fuzz::Input input(data, size);
    const auto decoded = utf8Text(input.bytes);
    require(!decoded || decoded->toUtf8() == input.bytes || input.bytes.startsWith("\xef\xbb\xbf"),
            "decoding loses nothing but a byte order mark");
    // Beside UTF-8, any 16-bit units: JSON may hold halves of surrogate pairs.
    const bool raw = input.mode >= 128;
    const QString text = raw ? QString(reinterpret_cast<const QChar *>(input.bytes.constData()), input.bytes.size() / 2)
                             : QString::fromUtf8(input.bytes);
    checkName(text);
    checkLines(text, 1 + input.mode % 40);
    if (!raw && !text.contains(QChar(QChar::ByteOrderMark))) // halves become replacement characters, marks disappear
        checkOrder(text);
    checkCode(text, static_cast<qsizetype>(input.mode % 16) - 2);
    checkBase64(text);
    require(clusters(computerDisplayName(text)) <= 32, "the length of a computer's name");
    return 0;
}
