#include "ui/widgets/notice_window.h"

#include "ui/views/notice_view.h"
#include "ui/widgets/text_styles.h"
#include "ui/widgets/windows.h"

#include <QAccessibleWidget>
#include <QMouseEvent>
#include <QPainter>
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
    HUDView(const NoticeView &view, std::function<void()> clicked)
        : QWidget(nullptr,
                  Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus),
          onClick(std::move(clicked)), error(view.error) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_X11NetWmWindowTypeNotification);
        setAttribute(Qt::WA_QuitOnClose, false);
        setFocusPolicy(Qt::NoFocus);
        setPalette(noticePalette());
        setWindowTitle(view.text); // not visible, but used by window lists and screen readers
        auto *label = new ToneLabel(uiFont(13, QFont::DemiBold), Tone::Normal, this);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        label->setText(view.text);
        const NoticeLayout layout = noticeLayout(label->wrappedSize(NoticeLayout::MAX_TEXT_WIDTH), roomInFront());
        label->setGeometry(layout.label);
        setGeometry(layout.panel);
    }

protected:
    void mousePressEvent(QMouseEvent *) override {
        if (onClick)
            onClick();
    }

    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(palette().color(QPalette::Window));
        painter.setPen(QPen(error ? colour(0.88, 0.32, 0.30) : colour(0.23, 0.25, 0.28), 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    }

private:
    const std::function<void()> onClick;
    const bool error;
};

/// A notice for screen readers: a notification without children, so that its text is read once.
class NoticeWindow::Announcement final : public QAccessibleWidget {
public:
    explicit Announcement(HUDView &notice) : QAccessibleWidget(&notice, QAccessible::Notification) {}
    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }

    static QAccessibleInterface *make(const QString &, QObject *object) {
        auto *notice = dynamic_cast<HUDView *>(object);
        return notice ? new Announcement(*notice) : nullptr;
    }
};

NoticeWindow::NoticeWindow() { QAccessible::installFactory(Announcement::make); }
NoticeWindow::~NoticeWindow() = default;

void NoticeWindow::show(const NoticeView &view, std::function<void()> clicked) {
    hide();
    // A new window for each: a screen reader may query late and must not get the text of the next notice.
    hudPanel = std::make_unique<HUDView>(view, std::move(clicked));
    showNotice(*hudPanel);
}

void NoticeWindow::hide() {
    if (!hudPanel)
        return;
    hudPanel->hide();
    hudPanel.release()->deleteLater(); // a click in the window may be the caller
}

} // namespace korvel
