#include "app/wording.h"
#include "simulator/gallery/gallery_case.h"
#include "ui/notice_view.h"
#include "ui/notice_window.h"
#include "ui/notices.h"

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

struct Sample {
    const char *name;
    std::function<Notice()> notice;
};

} // namespace

QList<Case> noticeCases() {
    const QList<Sample> samples{
        {"unbroken", [] { return Notice{.text = unbrokenName(), .error = true}; }},
    };
    QList<Case> cases;
    for (const Sample &sample : samples)
        cases.append({u"Notices"_s, QLatin1StringView(sample.name), [sample] {
                          const Notice notice = sample.notice();
                          auto window = std::make_shared<NoticeWindow>();
                          window->show(NoticeView{.text = notice.text, .error = notice.error}, {});
                          return std::shared_ptr<void>(window);
                      }});
    return cases;
}

} // namespace korvel::gallery
