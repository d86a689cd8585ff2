#include "benchmarks/flood_cases.h"

#include "ports/http_client.h"

using namespace Qt::StringLiterals;

namespace korvel::bench {

namespace {

/// Room for the JSON around a text in a response of maximum length.
constexpr qsizetype AROUND = 1024;
constexpr qsizetype FITS = MAX_RESPONSE - AROUND, TOO_LONG = 8'000'000;
const QByteArray NO_PERMS = R"({"ok":true})";

QByteArray health(const QByteArray &more) { return R"({"ok":true,"online":true)" + more + '}'; }

QByteArray report(const QByteArray &content) { return health(R"(,"e2ee":{)" + content + '}'); }

QByteArray list(const QByteArray &element, qsizetype count) {
    return '[' + (element + ',').repeated(count - 1) + element + ']';
}

/// A flood with `count` entries, half of them in each list.
Flood entries(const QString &what, const QByteArray &entry, qsizetype count) {
    const QByteArray half = list(entry, count / 2);
    return {u"%1 %2 entries"_s.arg(count).arg(what),
            report(R"("state":"active","pending":)" + half + R"(,"alarms":)" + half), NO_PERMS};
}

struct TextField {
    const char *name;
    QByteArray before, after; ///< The JSON around the text.
    bool isOfPerms = false;
};

QList<TextField> textFields() {
    const auto inReport = [](const char *name, const QByteArray &before, const QByteArray &after) {
        return TextField{name, R"({"ok":true,"e2ee":{)" + before, after + "}}"};
    };
    const auto inItem = [](const char *name, const QByteArray &key) {
        return TextField{name, R"({"ok":false,"missing":["a"],"items":[{")" + key + R"(":")", R"("}]})", true};
    };
    return {
        {"account", R"({"ok":true,"online":true,"account":")", "\"}"},
        {"ver", R"({"ok":true,"online":true,"ver":"agent/)", "\"}"},
        {"perms.missing", R"({"ok":true,"online":true,"perms":{"ok":false,"missing":[")", "\"]}}"},
        inReport("e2ee.state", R"("state":")", "\""),
        inReport("e2ee.trouble", R"("state":"off","required":true,"trouble":")", "\""),
        inReport("e2ee.relay", R"("state":"active","relay":")", "\""),
        inReport("e2ee.pair.show", R"("state":"pending","pair":{"show":")", "\"}"),
        inReport("e2ee.asr.installing", R"("state":"active","asr":{"installing":")", "\"}"),
        inReport("pending.pendingId", R"("state":"active","pending":[{"ready":true,"pendingId":")", "\"}]"),
        inReport("pending.name", R"("state":"active","pending":[{"ready":true,"pendingId":"1","name":")", "\"}]"),
        inReport("pending.platform", R"("state":"active","pending":[{"ready":true,"pendingId":"1","platform":")",
                 "\"}]"),
        inReport("alarms.id", R"("state":"active","alarms":[{"id":")", "\"}]"),
        inReport("alarms.kind", R"("state":"active","alarms":[{"kind":")", "\"}]"),
        inReport("alarms.text", R"("state":"active","alarms":[{"text":")", "\"}]"),
        inItem("items.name", "name"),
        inItem("items.state", "state"),
        inItem("items.pane", "pane"),
        inItem("items.why", "why"),
        inItem("items.breaks", "breaks"),
    };
}

Flood textOf(const TextField &field, qsizetype length) {
    const QByteArray body = field.before + QByteArray("W ").repeated(length / 2) + field.after;
    const QString name = u"%1 of %2 bytes"_s.arg(QLatin1StringView(field.name)).arg(length);
    return field.isOfPerms ? Flood{name, health({}), body} : Flood{name, body, NO_PERMS};
}

} // namespace

QList<Flood> floods() {
    QList<Flood> all;
    const QByteArray device =
        R"({"pendingId":"1","id":"1","name":"Anna's phone","platform":"ios","text":"Somebody tried.","ready":true})";
    const QByteArray longDevice = QByteArray(device).replace("Anna's phone", QByteArray(3000, 'W'));
    for (const qsizetype count : {1'000, 10'000, 100'000, 1'000'000})
        all.append(entries(u"empty"_s, "{}", count));
    for (const qsizetype count : {1'000, 4'000, 10'000})
        all.append(entries(u"usual"_s, device, count));
    all.append(entries(u"long"_s, longDevice, 160));
    const qsizetype permissions = 160;
    all.append({u"%1 long permissions"_s.arg(permissions), health({}),
                R"({"ok":false,"missing":[],"items":)" +
                    list(R"({"name":")" + QByteArray(1000, 'W') + R"(","state":"denied","why":")" +
                             QByteArray(1000, 'W') + R"(","breaks":")" + QByteArray(1000, 'W') + "\"}",
                         permissions) +
                    '}'});
    const QByteArray nest = QByteArray(500, '[') + QByteArray(500, ']');
    all.append({u"lists 500 deep"_s, health(R"(,"x":)" + list(nest, FITS / (nest.size() + 1))), NO_PERMS});
    for (const TextField &field : textFields())
        for (const qsizetype length : {FITS, TOO_LONG})
            all.append(textOf(field, length));
    return all;
}

Flood calm() { return {u"calm"_s, health({}), NO_PERMS}; }

} // namespace korvel::bench
