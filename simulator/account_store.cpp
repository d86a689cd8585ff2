#include "simulator/account_store.h"

#include "simulator/account_json.h"
#include "simulator/document.h"
#include "simulator/files.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

// A file is replaced as a whole, so that a reader needs no lock.
AccountBook AccountStore::read() const {
    const auto stored = readObject(paths.accounts());
    return stored ? accountBookFrom(*stored) : AccountBook{.users = {defaultAccount()}};
}

bool AccountStore::change(const std::function<bool(AccountBook &, qint64)> &event) const {
    return Document(paths.accounts()).change([&](QJsonObject &stored) {
        AccountBook book = read();
        const bool happened = event(book, timeNow());
        stored = toJson(book);
        return happened;
    });
}

} // namespace korvel::sim
