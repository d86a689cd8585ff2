// The privileged script: a shell reads the path in it back, byte for byte. KORVEL_FUZZ_SHELL=1 asks /bin/sh as well.
#include "fuzz/fuzz.h"
#include "update/install_script.h"

#include <cstring>
#include <optional>

using namespace korvel;
using namespace Qt::StringLiterals;
using fuzz::require;

namespace {

/// The word that a shell makes of `text` (POSIX, 2.2 Quoting); none if it is not exactly one word without expansions.
std::optional<QByteArray> wordOf(const QByteArray &text) {
    QByteArray word;
    char quote = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        if (quote == '\'' || (quote == '"' && !std::strchr("\"$`\\", c))) {
            if (c == quote)
                quote = 0;
            else
                word += c;
        } else if (c == quote) {
            quote = 0;
        } else if (c == '\\' && i + 1 < text.size() && text.at(i + 1) != '\n') {
            word += text.at(++i);
        } else if (!quote && (c == '\'' || c == '"')) {
            quote = c;
        } else if (quote || !c || std::strchr("|&;<>()$`\\ \t\n*?[#~=%", c)) {
            return std::nullopt;
        } else {
            word += c;
        }
    }
    return quote ? std::nullopt : std::optional(word);
}

QByteArray wordOfShell(const QByteArray &text) {
    const QByteArray command = "printf %s " + text;
    FILE *output = ::popen(command.constData(), "r");
    QByteArray word(1 << 16, '\0');
    word.resize(static_cast<qsizetype>(std::fread(word.data(), 1, 1 << 16, output)));
    ::pclose(output);
    return word;
}

void checkScript(const QString &path) {
    const QString sha(64, u'a');
    static const QStringList AROUND = installScript(u"/x"_s, QString(64, u'a')).split(u"'/x'"_s);
    const QString script = installScript(path, sha);
    require(AROUND.size() == 2 && script.startsWith(AROUND.first()) && script.endsWith(AROUND.last()),
            "the rest of the script stays as it is");
    const QByteArray quoted =
        script.sliced(AROUND.first().size(), script.size() - AROUND.first().size() - AROUND.last().size()).toUtf8();
    require(wordOf(quoted) == path.toUtf8(), "the path is one word");
    static const bool ASKS_SHELL = std::getenv("KORVEL_FUZZ_SHELL");
    require(!ASKS_SHELL || wordOfShell(quoted) == path.toUtf8(), "/bin/sh says the same");
}

void checkOutcome(const QByteArray &output, unsigned mode) {
    ProgramResult result{.status = static_cast<int>(mode % 3) - 1, .launched = true, .output = output};
    const InstallOutcome outcome = installOutcome(result);
    require((outcome == InstallOutcome::Installed) == (result.status == 0), "only status 0 is a success");
    require(outcome != InstallOutcome::Modified || output.contains("72)"), "only the script reports another hash");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    checkOutcome(input.bytes, input.mode);
    const QString path = QString::fromUtf8(input.bytes.replace('\0', "")); // a path holds no null
    checkScript(u'/' + path);
    checkScript(path);
    return 0;
}
