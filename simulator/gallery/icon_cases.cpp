#include "simulator/gallery/gallery_case.h"
#include "ui/views/icon_view.h"
#include "ui/widgets/icons.h"

#include <QBoxLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

/// The icon in the sizes that panels request, on a panel of that colour.
QWidget *strip(const QIcon &icon, const QColor &panel) {
    auto *all = new QWidget;
    all->setAutoFillBackground(true);
    all->setPalette(QPalette(panel));
    auto *row = new QHBoxLayout(all);
    for (const int size : {16, 18, 22, 32}) {
        auto *label = new QLabel(all);
        label->setPixmap(icon.pixmap(QSize(size, size), all->devicePixelRatioF()));
        row->addWidget(label);
    }
    return all;
}

std::shared_ptr<void> show(const IconView &view) {
    auto window = std::make_shared<QWidget>();
    auto *column = new QVBoxLayout(window.get());
    column->addWidget(strip(panelIcon(view), QColor(0x1e, 0x1e, 0x20)));
    column->addWidget(strip(panelIcon(view), QColor(0xf4, 0xf4, 0xf4)));
    window->show();
    return window;
}

} // namespace

QList<Case> iconCases() {
    QList<Case> cases;
    for (const auto &[name, view] : {std::pair(u"connected"_s, IconView{.on = true, .dimmed = false, .toolTip = {}}),
                                     std::pair(u"not-connected"_s, IconView{.on = true, .dimmed = true, .toolTip = {}}),
                                     std::pair(u"not-running"_s, IconView{.on = false, .dimmed = true, .toolTip = {}})})
        cases.append({u"Icon"_s, name, [view = view] { return show(view); }, Differs::InNothing});
    return cases;
}

} // namespace korvel::gallery
