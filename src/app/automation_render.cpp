#include "app/automation_render.h"

#include "account/cn_login_window.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr int PIXELS_PER_POINT = 2;

int refuse(const QString &why) {
    std::fprintf(stderr, "%s\n", qUtf8Printable(why));
    return 1;
}

std::optional<CnLoginForm> formFor(const QString &page) {
    CnLoginForm form;
    if (page == u"register")
        form.page = Page::Register;
    else if (page == u"reset")
        form.page = Page::Reset;
    else if (page == u"code")
        form.codeMode = true;
    else if (page != u"login")
        return std::nullopt;
    return form;
}

bool savePicture(QWidget &window, const QString &file) {
    QImage image(window.size() * PIXELS_PER_POINT, QImage::Format_RGB32);
    image.setDevicePixelRatio(PIXELS_PER_POINT);
    image.fill(window.palette().color(QPalette::Window));
    window.render(&image);
    return image.save(file, "PNG");
}

} // namespace

int renderLogin(const QString &page, const QString &file) {
    const auto form = formFor(page);
    if (!form)
        return refuse(u"--login-render: the page is \"login\", \"code\", \"register\" or \"reset\""_s);
    char program[] = "korvel-tray", platform[] = "-platform", offscreen[] = "offscreen";
    char *arguments[] = {program, platform, offscreen, nullptr};
    int count = 3;
    const QApplication app(count, arguments);
    CnLoginWindow window([](const LoginInput &) {});
    window.apply(cnLoginView(*form));
    return savePicture(window, file) ? 0 : refuse(u"--login-render: cannot write "_s + file);
}

} // namespace korvel
