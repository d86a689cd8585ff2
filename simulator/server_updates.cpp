#include "simulator/server_updates.h"

#include "simulator/files.h"
#include "simulator/scenario.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

bool ServerUpdates::publish(const QString &version) { return change(QJsonObject{{u"ver"_s, version}}); }

bool ServerUpdates::withdraw() { return change(QJsonValue::Null); }

UpdateOffer ServerUpdates::offer() const { return updateOffer(Scenario::read(paths).section("update"_L1)); }

QString ServerUpdates::packagePath() const { return u"/dl/"_s + offer().info.file; }

bool ServerUpdates::change(const QJsonValue &update) {
    return Scenario::write(paths, mergePatch(Scenario::read(paths).values(), {{u"update"_s, update}}));
}

} // namespace korvel::sim
