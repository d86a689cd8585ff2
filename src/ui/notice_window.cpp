#include "ui/notice_window.h"

#include "ui/notice_view.h"
#include "ui/text_styles.h"
#include "ui/window_front.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWidget>

namespace korvel {

namespace {

QColor colour(double r, double g, double b, double a = 1) {
    return QColor::fromRgbF(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b), static_cast<float>(a));
}

QPalette noticePalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, colour(0.129, 0.145, 0.169, 0.96));
    palette.setColor(QPalette::WindowText, colour(0.9, 0.91, 0.93));
    return palette;
}

} // namespace

class NoticeWindow::HUDView final : public QWidget {
public:
    HUDView()
        : QWidget(nullptr,
                  Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_X11NetWmWindowTypeNotification);
        setAttribute(Qt::WA_MacAlwaysShowToolWindow); // also while another application is active
        setAttribute(Qt::WA_QuitOnClose, false);
        setFocusPolicy(Qt::NoFocus);
        setPalette(noticePalette());
        label = new ToneLabel(uiFont(13, QFont::DemiBold), Tone::Normal, this);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }

    void present(const NoticeView &view, std::function<void()> clicked) {
        error = view.error;
        onClick = std::move(clicked);
        label->setText(view.text);
        setAccessibleName(view.text);
        setWindowTitle(view.text); // never seen, but window lists and screen readers know it
        const QScreen *screen = QGuiApplication::primaryScreen();
        const NoticeLayout layout = noticeLayout(label->wrappedSize(NoticeLayout::MAX_TEXT_WIDTH),
                                                 screen ? screen->availableGeometry() : QRect(0, 0, 800, 600));
        label->setGeometry(layout.label);
        setGeometry(layout.panel);
        update();
        showNotice(*this);
        QAccessibleEvent announcement(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&announcement);
    }

protected:
    void mousePressEvent(QMouseEvent *) override {
        // A copy: the action may present the next notice.
        if (const auto action = onClick)
            action();
    }

    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(palette().color(QPalette::Window));
        painter.setPen(QPen(error ? colour(0.88, 0.32, 0.30) : colour(0.23, 0.25, 0.28), 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    }

private:
    ToneLabel *label = nullptr;
    std::function<void()> onClick;
    bool error = false;
};

NoticeWindow::NoticeWindow() = default;
NoticeWindow::~NoticeWindow() = default;

void NoticeWindow::show(const NoticeView &view, std::function<void()> clicked) {
    if (!hudPanel)
        hudPanel = std::make_unique<HUDView>();
    hudPanel->present(view, std::move(clicked));
}

void NoticeWindow::hide() {
    if (hudPanel)
        hudPanel->hide();
}

} // namespace korvel
