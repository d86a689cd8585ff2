// tick COUNT runs the work of a health tick, from the agent's text to icon and menu, COUNT times. For callgrind.

#include "app/model/deployment.h"
#include "app/model/situation.h"
#include "benchmarks/report.h"
#include "status/health.h"
#include "status/status_view.h"
#include "ui/menu/menu_view.h"

#include "ui/widgets/menu_widget.h"
#include "ui/widgets/picture.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace korvel::bench {

/// One tick. Not inlined, so that callgrind lists it by name.
[[gnu::noinline]] void tick(const QByteArray &text, TrayState &state, const FixedConfig &config, MenuWidget &menu) {
    const Instant now = Instant(1h);
    const QJsonObject response = QJsonDocument::fromJson(text).object();
    applyHealth(state, response, {.now = now, .bound = true, .username = u"ann"_s});
    const Situation situation{.state = state,
                              .isCn = config.IS_CN,
                              .version = config.VERSION,
                              .timing = timingOf(state.health, now),
                              .bound = true,
                              .plistExists = true,
                              .server = {}};
    const IconView icon = iconView(situation);
    menu.apply(menuView(situation));
    static_cast<void>(icon);
}

} // namespace korvel::bench

int main(int argc, char **argv) {
    using namespace korvel;
    const int count = argc == 2 ? QByteArray(argv[1]).toInt() : 0;
    const PictureApplication app;
    const FixedConfig config = makeFixedConfig(builtDeployment(), {});
    const QByteArray text = bench::healthText(1);
    TrayState state;
    MenuWidget menu(MenuHost::Program, [](const MenuEntry &) {});
    bench::tick(text, state, config, menu); // one-time work
    for (int i = 0; i < count; ++i)
        bench::tick(text, state, config, menu);
    return 0;
}
