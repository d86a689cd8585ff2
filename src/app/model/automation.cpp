#include "app/model/automation.h"

namespace korvel {

std::optional<AutomationMode> automationMode(const QStringList &args, const std::optional<QString> &permission) {
    struct Switch {
        QStringView name;
        qsizetype entries;
        AutomationMode mode;
    };
    static constexpr Switch SWITCHES[] = {
        {u"--login", 3, AutomationMode::Login},
        {u"--e2ee-render", 5, AutomationMode::E2eeRender},
        {u"--agent-json", 2, AutomationMode::AgentJson},
        {u"--menu-dump", 2, AutomationMode::MenuDump},
        {u"--login-render", 4, AutomationMode::LoginRender},
    };
    for (const Switch &candidate : SWITCHES)
        if (args.size() >= candidate.entries && args.at(1) == candidate.name && permission == QStringLiteral("1"))
            return candidate.mode;
    return std::nullopt;
}

} // namespace korvel
