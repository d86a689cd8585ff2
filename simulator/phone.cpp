#include "simulator/phone.h"

#include "simulator/encryption_events.h"

namespace korvel::sim {

bool Phone::signIn() { return store.change(phoneSignsIn); }

bool Phone::signOut() { return store.change(phoneSignsOut); }

bool Phone::type(const QString &code) {
    return store.change([&](Encryption &encryption, const EncryptionRules &rules, qint64 now) {
        return phoneTypes(encryption, code, rules, now);
    });
}

bool Phone::typeRight() {
    return store.change([](Encryption &encryption, const EncryptionRules &rules, qint64 now) {
        return phoneTypes(encryption, encryption.code, rules, now);
    });
}

bool Phone::deny() { return store.change(phoneDenies); }

} // namespace korvel::sim
