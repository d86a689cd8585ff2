#include "simulator/account_store.h"

#include "simulator/account_json.h"
#include "simulator/file_lock.h"
#include "simulator/files.h"

#include <QDir>
#include <QJsonDocument>

namespace korvel::sim {

using namespace Qt::StringLiterals;

// A file is replaced as a whole, so that a reader needs no lock.
AccountBook AccountStore::read() const {
    const auto stored = readObject(paths.accounts());
    return stored ? accountBookFrom(*stored) : AccountBook{.users = {defaultAccount()}};
}

bool AccountStore::change(const std::function<bool(AccountBook &, qint64)> &event) const {
    QDir().mkpath(paths.state());
    const FileLock lock(paths.accounts() + ".lock"_L1);
    if (!lock.isHeld())
        return false;
    const AccountBook before = read();
    AccountBook after = before;
    if (!event(after, timeNow()))
        return false;
    return after == before || replaceFile(paths.accounts(), QJsonDocument(toJson(after)).toJson());
}

} // namespace korvel::sim
