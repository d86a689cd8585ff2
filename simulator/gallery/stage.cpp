#include "simulator/gallery/stage.h"

#include "app/model/wording.h"
#include "ui/widgets/picture.h"

#include <QApplication>
#include <QPalette>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

QPalette coloursOf(Appearance appearance) {
    struct Colours {
        QColor window, text, base, button, highlight, link;
    };
    static const Colours LIGHT{{0xef, 0xef, 0xef}, Qt::black,          Qt::white,
                               {0xef, 0xef, 0xef}, {0x30, 0x8c, 0xc6}, {0x00, 0x57, 0xae}};
    static const Colours DARK{{0x2a, 0x2e, 0x32}, {0xfc, 0xfc, 0xfc}, {0x1b, 0x1e, 0x20},
                              {0x31, 0x36, 0x3b}, {0x3d, 0xae, 0xe9}, {0x1d, 0x99, 0xf3}};
    const Colours &c = appearance == Appearance::Dark ? DARK : LIGHT;
    QPalette palette(c.text, c.button, c.button.lighter(150), c.button.darker(180), c.button.darker(130), c.text,
                     Qt::white, c.base, c.window);
    palette.setColor(QPalette::Highlight, c.highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, c.link);
    palette.setColor(QPalette::ToolTipBase, c.button);
    palette.setColor(QPalette::ToolTipText, c.text);
    // As faint as systems draw disabled controls.
    const QColor faint = appearance == Appearance::Dark ? QColor(0x6e, 0x72, 0x76) : QColor(0xbe, 0xbe, 0xbe);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    return palette;
}

} // namespace

QList<Setting> allSettings() {
    return {{.chinese = false, .appearance = Appearance::Light},
            {.chinese = true, .appearance = Appearance::Light},
            {.chinese = false, .appearance = Appearance::Dark},
            {.chinese = true, .appearance = Appearance::Dark}};
}

QList<Setting> settingsOf(const Case &shown) {
    QList<Setting> settings = allSettings();
    settings.removeIf([&](const Setting &s) {
        return (s.appearance != Appearance::Light && shown.differs != Differs::InLanguageAndAppearance) ||
               (s.chinese && shown.differs == Differs::InNothing);
    });
    return settings;
}

QStringList differencesOf(const Case &shown, const Setting &setting) {
    QStringList differences;
    if (shown.differs != Differs::InNothing)
        differences.append(setting.chinese ? u"zh"_s : u"en"_s);
    if (shown.differs == Differs::InLanguageAndAppearance)
        differences.append(setting.appearance == Appearance::Dark ? u"dark"_s : u"light"_s);
    return differences;
}

void apply(const Setting &setting) {
    ZH = setting.chinese;
    QApplication::setPalette(coloursOf(setting.appearance));
}

Staged::Staged(const Case &c) : shown(c.show()) { finishLayout(); }

Staged::~Staged() {
    shown.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QWidget *Staged::window() const {
    QWidget *found = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (!widget->isVisible())
            continue;
        if (found)
            return nullptr;
        found = widget;
    }
    return found;
}

} // namespace korvel::gallery
