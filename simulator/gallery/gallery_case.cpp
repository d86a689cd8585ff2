#include "simulator/gallery/gallery_case.h"

#include "base/plain_text.h"

using namespace Qt::StringLiterals;

namespace korvel::gallery {

QList<Case> allCases() {
    return pairCases() + loginCases() + alertCases() + noticeCases() + situationCases() + iconCases();
}

QString longName() {
    return u"Anna-Katharina’s third telephone, the blue one with the cracked corner that lives in the kitchen drawer"_s;
}

QString unbrokenName() { return u"device"_s + QString(194, u'x'); }

QStringList sampleNames() {
    QStringList names;
    for (const QString &name : {longName(), unbrokenName()})
        names << name << shownName(name);
    return names << rightToLeftName() << u"Anna’s phone"_s << u"anna@example.com"_s << u"Anna & Ben’s_phone"_s
                 << u"anna"_s << u"Büro"_s << u"iPhone"_s << u"Windows"_s;
}

QString rightToLeftName() { return u"הטלפון של אנה 👩🏽‍🔬📱"_s; }

} // namespace korvel::gallery
