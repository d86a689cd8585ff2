#include "app/automation_render.h"

#include "app/automation_output.h"
#include "e2ee/approval.h"
#include "ui/widgets/alert_window.h"
#include "ui/widgets/cn_login_window.h"
#include "ui/widgets/pair_window.h"
#include "ui/widgets/picture.h"

namespace korvel {

namespace {

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

/// Draws a visible window.
int draw(QWidget &window, const QString &file, const char *mode) {
    if (savePicture(pictureOf(window), file))
        return 0;
    return refuse(QByteArray(mode) + ": cannot write " + file.toUtf8());
}

PairView previewOf(const QJsonObject &report) {
    PairState pairing{.pairSawCode = true, .pairPreview = true};
    return pairView(report, pairing, {}).view;
}

} // namespace

int renderLogin(const QString &page, const QString &file) {
    const auto form = formFor(page);
    if (!form)
        return refuse("--login-render: the page is \"login\", \"code\", \"register\" or \"reset\"");
    const PictureApplication app;
    CnLoginWindow window([](const LoginInput &) {});
    window.apply(cnLoginView(*form));
    window.show();
    window.activateWindow();
    window.focus(firstEmptyField(*form));
    return draw(window, file, "--login-render");
}

int renderE2ee(const QString &kind, const QString &file, const QByteArray &json) {
    if (kind != u"pair" && kind != u"approve")
        return refuse("--e2ee-render: the kind is \"pair\" or \"approve\"");
    const auto given = parseObject(json);
    if (!given)
        return refuse("--e2ee-render: the last argument is not a JSON object");
    const PictureApplication app;
    if (kind == u"pair") {
        PairWindow window({});
        window.present(previewOf(*given), OpenedBy::User);
        return draw(window, file, "--e2ee-render");
    }
    AlertDialog alert(approveAlert(*given, given->value(u"error").toString()), [](const AlertAnswer &) {});
    alert.show();
    alert.activateWindow();
    return draw(alert, file, "--e2ee-render");
}

} // namespace korvel
