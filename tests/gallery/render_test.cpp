#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// The tray in a drawing mode, in an environment with nothing but an empty home: no display, no bus, no agent.
struct Drawing {
    QTemporaryDir home;
    QByteArray complaint;

    QString file(const QString &name) const { return home.filePath(name); }
    int run(const QStringList &arguments, const QString &language = u"en"_s) {
        QProcess tray;
        QProcessEnvironment bare;
        bare.insert(u"HOME"_s, home.path());
        bare.insert(u"LANGUAGE"_s, language);
        bare.insert(u"KORVEL_TRAY_AUTOMATION"_s, u"1"_s);
        for (const QString &name : {u"LSAN_OPTIONS"_s, u"ASAN_OPTIONS"_s, u"UBSAN_OPTIONS"_s})
            bare.insert(name, qEnvironmentVariable(name.toLatin1()));
        tray.setProcessEnvironment(bare);
        tray.start(QStringLiteral(KORVEL_TRAY_PROGRAM), arguments);
        tray.closeWriteChannel();
        EXPECT_TRUE(tray.waitForFinished(60000));
        complaint = tray.readAllStandardError();
        return tray.exitCode();
    }
    QByteArray drawn(QStringList arguments, const QString &language = u"en"_s) {
        const QString picture = file(u"picture.png"_s);
        QFile::remove(picture);
        arguments.replaceInStrings(u"OUT"_s, picture);
        EXPECT_EQ(run(arguments, language), 0) << complaint.constData();
        QFile written(picture);
        return written.open(QIODevice::ReadOnly) ? written.readAll() : QByteArray();
    }
};

const QString REPORT = uR"({"state":"pending","pair":{"show":"482 913"}})"_s;
const QString REQUEST = uR"({"pendingId":"1","name":"Anna's phone","platform":"ios","error":"Wrong."})"_s;

TEST(Render, EachWindowIsDrawnTheSameEveryTimeInTheLanguageOfTheEnvironment) {
    Drawing tray;
    QSet<QByteArray> pictures;
    for (const QStringList &arguments : {QStringList{u"--login-render"_s, u"login"_s, u"OUT"_s},
                                         {u"--login-render"_s, u"code"_s, u"OUT"_s},
                                         {u"--login-render"_s, u"register"_s, u"OUT"_s},
                                         {u"--login-render"_s, u"reset"_s, u"OUT"_s},
                                         {u"--e2ee-render"_s, u"pair"_s, u"OUT"_s, REPORT},
                                         {u"--e2ee-render"_s, u"approve"_s, u"OUT"_s, REQUEST}}) {
        const QByteArray english = tray.drawn(arguments);
        EXPECT_EQ(english, tray.drawn(arguments)) << arguments.join(u' ').toStdString();
        const QImage image = QImage::fromData(english);
        EXPECT_GE(image.width(), 2 * 400) << arguments.join(u' ').toStdString(); // two pixels a point
        pictures << english << tray.drawn(arguments, u"zh_CN"_s);
    }
    EXPECT_EQ(pictures.size(), 12);
}

TEST(Render, WhatCannotBeDrawnIsToldInOneLine) {
    Drawing tray;
    const QString out = tray.file(u"out.png"_s);
    for (const QStringList &arguments : {QStringList{u"--login-render"_s, u"other"_s, out},
                                         {u"--login-render"_s, u"login"_s, u"/no/such/folder/x.png"_s},
                                         {u"--e2ee-render"_s, u"other"_s, out, REPORT},
                                         {u"--e2ee-render"_s, u"pair"_s, out, u"[]"_s},
                                         {u"--e2ee-render"_s, u"approve"_s, out, u"{"_s},
                                         {u"--e2ee-render"_s, u"pair"_s, u"/no/such/x.png"_s, REPORT}}) {
        EXPECT_EQ(tray.run(arguments), 1) << arguments.join(u' ').toStdString();
        EXPECT_EQ(tray.complaint.count('\n'), 1) << tray.complaint.constData();
        EXPECT_FALSE(QFile::exists(out));
    }
}

} // namespace
} // namespace korvel::test
