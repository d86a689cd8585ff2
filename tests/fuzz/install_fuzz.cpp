// The privileged script: word splitting as by a shell gives the path in it back, byte for byte.
#include "fuzz/fuzz.h"
#include "update/install_script.h"

#include <optional>
#include <wordexp.h>

using namespace korvel;
using namespace Qt::StringLiterals;
using fuzz::require;

namespace {

/// The word that a shell makes of `text`; none if it is not exactly one word without a command and unknown variables.
std::optional<QByteArray> wordOf(const QByteArray &text) {
    wordexp_t words{};
    const bool isOne = ::wordexp(text.constData(), &words, WRDE_NOCMD | WRDE_UNDEF) == 0 && words.we_wordc == 1;
    const auto word = isOne ? std::optional<QByteArray>(words.we_wordv[0]) : std::nullopt;
    ::wordfree(&words);
    return word;
}

void checkScript(const QString &path) {
    static const QStringList AROUND = installScript(u"/x"_s, QString(64, u'a')).split(u"'/x'"_s);
    const QString script = installScript(path, QString(64, u'a'));
    require(AROUND.size() == 2 && script.startsWith(AROUND.first()) && script.endsWith(AROUND.last()),
            "the rest of the script stays as it is");
    const QString quoted = script.chopped(AROUND.last().size()).sliced(AROUND.first().size());
    require(wordOf(quoted.toUtf8()) == path.toUtf8(), "the path is one word");
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
    checkScript(u'/' + QString::fromUtf8(input.bytes.replace('\0', ""))); // a path holds no null
    return 0;
}
