#include "simulator/gallery/window_faults.h"

#include "simulator/gallery/gallery_case.h"
#include "ui/widgets/buttons.h"
#include "ui/widgets/text_styles.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QRegularExpression>
#include <QScreen>
#include <QStyle>
#include <QStyleOption>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

constexpr int BESIDE_TEXT = 8; // points on each side of a button's text

bool isLink(const QPushButton &button) { return dynamic_cast<const LinkButton *>(&button); }

/// Whether a widget is checked itself. Other widgets only contain controls.
bool isControl(const QWidget &widget) {
    return qobject_cast<const QLabel *>(&widget) || qobject_cast<const QAbstractButton *>(&widget) ||
           qobject_cast<const QLineEdit *>(&widget) || qobject_cast<const QProgressBar *>(&widget);
}

QList<const QWidget *> controlsOf(const QWidget &window) {
    QList<const QWidget *> controls;
    for (const QWidget *widget : window.findChildren<QWidget *>())
        if (widget->isVisible() && isControl(*widget))
            controls.append(widget);
    return controls;
}

QString textOf(const QWidget &control) {
    if (const auto *label = qobject_cast<const QLabel *>(&control))
        return label->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(&control))
        return button->text();
    const auto *field = qobject_cast<const QLineEdit *>(&control);
    return field ? field->placeholderText() : QString();
}

QString named(const QWidget &control) {
    const QString text = textOf(control);
    return text.isEmpty() ? QString::fromLatin1(control.metaObject()->className()) : u'"' + text.left(40) + u'"';
}

/// The visible part of a control. A part that a scroll area hides can be scrolled to.
QRect placeIn(const QWidget &window, const QWidget &control) {
    QRect place(control.mapTo(&window, QPoint()), control.size());
    for (const QWidget *holder = control.parentWidget(); holder && holder != &window; holder = holder->parentWidget())
        if (qobject_cast<const QAbstractScrollArea *>(holder))
            place &= QRect(holder->mapTo(&window, QPoint()), holder->size());
    return place;
}

/// The size that a control needs for its whole text. Wrapping texts keep their width.
QSize neededSize(const QWidget &control) {
    if (const auto *label = dynamic_cast<const ToneLabel *>(&control); label && label->wordWrap())
        return label->wrappedSize(label->width());
    if (const auto *field = qobject_cast<const QLineEdit *>(&control)) {
        const QMargins margins = field->textMargins();
        const int frame = 2 * (field->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, field) + 2);
        return {field->fontMetrics().horizontalAdvance(field->placeholderText()) + margins.left() + margins.right() +
                    frame,
                field->fontMetrics().height()};
    }
    if (const auto *button = qobject_cast<const QPushButton *>(&control); button && !isLink(*button))
        return button->sizeHint().expandedTo(
            {button->fontMetrics().horizontalAdvance(button->text()) + 2 * BESIDE_TEXT, 0});
    if (const auto *box = qobject_cast<const QCheckBox *>(&control)) {
        QStyleOptionButton option;
        option.initFrom(box);
        const QRect text = box->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, box);
        return {text.left() + box->fontMetrics().horizontalAdvance(box->text()), box->sizeHint().height()};
    }
    return qobject_cast<const QProgressBar *>(&control) ? QSize() : control.sizeHint();
}

QStringList menuFaults(const QMenu &menu) {
    QStringList faults;
    for (const QAction *action : menu.actions()) {
        const QRect place = menu.actionGeometry(const_cast<QAction *>(action));
        if (action->isSeparator())
            continue;
        if (!menu.rect().contains(place))
            faults.append(u"entry \"%1\" leaves the menu"_s.arg(action->text().left(40)));
        if (menu.fontMetrics().size(Qt::TextShowMnemonic, action->text()).width() > place.width())
            faults.append(u"entry \"%1\" is cut off"_s.arg(action->text().left(40)));
    }
    return faults;
}

bool isChinese(QChar c) { return c.script() == QChar::Script_Han; }

/// All matches of `pattern`, sorted.
QStringList found(const QString &pattern, const QString &text) {
    QStringList all;
    for (const auto &match : QRegularExpression(pattern).globalMatch(text))
        all.append(match.captured());
    all.sort();
    return all;
}

/// The names from outside in a text, with repetitions.
QStringList namesIn(const QString &text) {
    QStringList names;
    for (const QString &name : sampleNames())
        names.append(QStringList(text.count(name), name));
    return names;
}

/// A text without names from outside and without words that are the same in both languages.
QString withoutNames(QString text) {
    for (const QString &name : sampleNames())
        text.remove(name);
    return text.remove(QRegularExpression(u"korvel-agent|[a-z]+\\.korvel\\.example|http:|\\b(?:Korvel|Mac|MB)\\b"_s));
}

} // namespace

QStringList layoutFaults(const QWidget &window) {
    QStringList faults;
    if (!window.screen()->availableGeometry().contains(window.geometry()))
        faults.append(u"the window leaves the screen"_s);
    if (const auto *menu = qobject_cast<const QMenu *>(&window))
        return faults + menuFaults(*menu);
    const QList<const QWidget *> controls = controlsOf(window);
    for (qsizetype i = 0; i < controls.size(); ++i) {
        const QWidget &control = *controls.at(i);
        const QRect place = placeIn(window, control);
        if (!window.rect().contains(place))
            faults.append(named(control) + u" leaves the window"_s);
        const QSize needed = neededSize(control);
        if (needed.width() > control.width() || needed.height() > control.height())
            faults.append(u"%1 is cut off: it needs %2 x %3 and has %4 x %5"_s.arg(named(control))
                              .arg(needed.width())
                              .arg(needed.height())
                              .arg(control.width())
                              .arg(control.height()));
        for (const QWidget *other : controls.mid(i + 1))
            if (place.intersects(placeIn(window, *other)))
                faults.append(named(control) + u" overlaps "_s + named(*other));
    }
    return faults;
}

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
