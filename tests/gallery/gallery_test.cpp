#include "simulator/gallery/layout_faults.h"
#include "simulator/gallery/stage.h"

#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace korvel::gallery;

namespace korvel::test {
namespace {

TEST(Gallery, NothingIsCutOffOverlapsOrLeavesItsWindow) {
    QSet<QString> names;
    for (const Setting &setting : allSettings()) {
        apply(setting);
        for (const Case &shown : allCases()) {
            if (!settingsOf(shown).contains(setting))
                continue;
            const QString name = shown.group + u'/' + shown.name + u' ' + differencesOf(shown, setting).join(u' ');
            EXPECT_FALSE(names.contains(name)) << name.toStdString();
            names.insert(name);
            const Staged staged(shown);
            ASSERT_NE(staged.window(), nullptr) << name.toStdString();
            EXPECT_EQ(layoutFaults(*staged.window()).join(u"; "_s).toStdString(), "") << name.toStdString();
        }
    }
}

/// The faults of a window with a label and a button at these places.
QString faultsOf(QRect label, QRect button) {
    QWidget window;
    window.setGeometry(100, 100, 300, 100);
    QLabel text(u"A text of some length"_s, &window);
    text.setGeometry(label);
    QPushButton ok(u"OK"_s, &window);
    ok.setGeometry(button);
    window.show();
    return layoutFaults(window).join(u"; "_s);
}

TEST(Gallery, EachKindOfFaultIsSeen) {
    const QRect label(10, 10, 280, 30), button(10, 50, 120, 40);
    EXPECT_EQ(faultsOf(label, button), QString());
    EXPECT_TRUE(faultsOf(label.adjusted(0, 0, -240, 0), button).contains(u"is cut off"_s));
    EXPECT_TRUE(faultsOf(label, button.adjusted(0, 0, 0, -35)).contains(u"is cut off"_s));
    EXPECT_TRUE(faultsOf(label, button.translated(0, -20)).contains(u"overlaps"_s));
    EXPECT_TRUE(faultsOf(label, button.translated(200, 0)).contains(u"leaves the window"_s));
}

} // namespace
} // namespace korvel::test
