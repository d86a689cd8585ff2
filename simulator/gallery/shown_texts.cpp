#include "simulator/gallery/shown_texts.h"

#include "simulator/gallery/gallery_case.h"

#include <QAbstractButton>
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

bool isChinese(QChar c) { return c.script() == QChar::Script_Han; }

/// What `pattern` finds in a text, sorted.
QStringList found(const QString &pattern, const QString &text) {
    QStringList all;
    for (const auto &match : QRegularExpression(pattern).globalMatch(text))
        all.append(match.captured());
    all.sort();
    return all;
}

/// The names from outside that a text holds, as often as it does.
QStringList namesIn(const QString &text) {
    QStringList names;
    for (const QString &name : sampleNames())
        names.append(QStringList(text.count(name), name));
    return names;
}

/// A text without the names from outside, and without words that are the same in both languages.
QString withoutNames(QString text) {
    for (const QString &name : sampleNames())
        text.remove(name);
    return text.remove(QRegularExpression(u"korvel-agent|[a-z]+\\.korvel\\.example|http:|\\b(?:Korvel|Mac|MB)\\b"_s));
}

} // namespace

QStringList shownTexts(const QWidget &window) {
    QStringList texts{window.windowTitle()};
    for (const QAction *action : window.actions())
        texts << action->text().replace(u"&&"_s, u"&"_s) << action->toolTip();
    for (const QWidget *part : window.findChildren<QWidget *>()) {
        if (!part->isVisible())
            continue;
        if (const auto *label = qobject_cast<const QLabel *>(part))
            texts << label->text();
        else if (const auto *button = qobject_cast<const QAbstractButton *>(part))
            texts << button->text();
        else if (const auto *field = qobject_cast<const QLineEdit *>(part))
            texts << field->placeholderText() << field->displayText();
        texts << part->toolTip();
    }
    texts.removeAll(QString());
    return texts;
}

QStringList languageFaults(const QString &english, const QString &chinese) {
    QStringList faults;
    if (std::any_of(english.begin(), english.end(), isChinese))
        faults.append(u"Chinese in the English text"_s);
    if (std::none_of(chinese.begin(), chinese.end(), isChinese))
        faults.append(u"no Chinese in the Chinese text"_s);
    const auto compare = [&](const QString &what, const QStringList &one, const QStringList &other) {
        if (one != other)
            faults.append(u"%1 differ: \"%2\" and \"%3\""_s.arg(what, one.join(u' '), other.join(u' ')));
    };
    const QString marks = u"[●○⚠🔒✓⬆↓⏻]"_s, numbers = u"\\d+(?:[.:]\\d+)*"_s, word = u"[A-Za-z]+"_s;
    compare(u"marks"_s, found(marks, english), found(marks, chinese));
    compare(u"numbers"_s, found(numbers, english), found(numbers, chinese));
    compare(u"names"_s, namesIn(english), namesIn(chinese));
    const QStringList foreign = found(word, withoutNames(chinese));
    if (!foreign.isEmpty())
        faults.append(u"English in the Chinese text: "_s + foreign.join(u' '));
    return faults;
}

} // namespace korvel::gallery
