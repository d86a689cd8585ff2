#include "browser_sign_in_fixture.h"

#include "simulator/browser/web_browser.h"

#include <QFile>

namespace korvel::sim {

using namespace Qt::StringLiterals;

TEST_F(BrowserSignInTest, PageInARealBrowserRefusesAWrongPasswordAndTakesTheRightOne) {
    ASSERT_TRUE(home.startAccountServer());
    const QJsonObject started = start();
    WebBrowser browser;
    ASSERT_TRUE(browser.open(started.value("url"_L1).toString())) << qPrintable(browser.error());
    EXPECT_TRUE(browser.text(u"#device"_s).value_or(QString()).contains(u"Sam's <Mini>"));
    const QString picture = folder.filePath(u"page.png"_s);
    EXPECT_TRUE(browser.screenshot(picture));
    QFile file(picture);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.read(4) == "\x89PNG");

    const auto signIn = [&browser](const QString &password) {
        return browser.fill(u"#username"_s, u"sam@example.com"_s) && browser.fill(u"#password"_s, password) &&
               browser.click(u"#sign-in"_s);
    };
    ASSERT_TRUE(signIn(u"close sesame"_s)) << qPrintable(browser.error());
    EXPECT_EQ(browser.text(u"#error"_s), u"Incorrect account or password."_s);
    EXPECT_EQ(statusNameOf(started), u"pending"_s);

    ASSERT_TRUE(signIn(u"open sesame"_s)) << qPrintable(browser.error());
    EXPECT_EQ(browser.text(u"h1"_s), u"Signed In"_s);
    EXPECT_EQ(statusNameOf(started), u"done"_s);
    EXPECT_EQ(home.account(), u"sam@example.com"_s);

    const QJsonObject unwanted = start();
    ASSERT_TRUE(browser.open(unwanted.value("url"_L1).toString()) && browser.click(u"#cancel"_s))
        << qPrintable(browser.error());
    EXPECT_EQ(browser.text(u"h1"_s), u"Cancelled"_s) << "with empty fields";
    EXPECT_EQ(statusNameOf(unwanted), u"cancelled"_s);
}

} // namespace korvel::sim
