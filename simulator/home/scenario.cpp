#include "simulator/home/scenario.h"

#include "simulator/home/files.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {
Document turns(const HomePaths &paths) { return Document(paths.state(u"turns.json"_s)); }
} // namespace

Scenario::Scenario(const HomePaths &home) : paths(home), content(readObject(paths.scenario())) {}

bool Scenario::write(const HomePaths &paths, const QJsonObject &values) {
    const bool written = replaceFile(paths.scenario(), values);
    turns(paths).change([](QJsonObject &counts) {
        counts = {};
        return true;
    });
    return written;
}

QJsonObject Scenario::fault(QLatin1StringView section, const QString &name) const {
    return fault(this->section(section), section, name);
}

QJsonObject Scenario::fault(const QJsonObject &faults, const QString &kind, const QString &name) const {
    const QJsonObject entry = faults.value(name).toObject();
    const int times = entry.value("times"_L1).toInt(-1);
    const bool happens = times < 0 || turns(paths).change([&](QJsonObject &counts) {
        const QString key = kind + u' ' + name;
        const int taken = counts.value(key).toInt();
        counts.insert(key, taken + 1);
        return taken < times;
    });
    return happens ? entry : QJsonObject();
}

} // namespace korvel::sim
