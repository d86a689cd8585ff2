#pragma once

#include <QJsonValue>
#include <functional>

namespace korvel {

/// Entrances of the features that TrayApp does not hold itself. Each does nothing until its feature is there.
struct FeatureHooks {
    std::function<void(bool manual)> checkUpdate = [](bool) {};
    std::function<void()> installUpdate = [] {};
    std::function<void(std::function<void()> then)> repairService = [](const std::function<void()> &then) {
        if (then)
            then();
    };
    std::function<void()> repairClicked = [] {};
    std::function<void()> fetchPerms = [] {};
    std::function<void()> askPerms = [] {};
    std::function<void(const QJsonValue &pane)> openPermPane = [](const QJsonValue &) {};
};

} // namespace korvel
