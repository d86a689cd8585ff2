#include "simulator/gallery/gallery_case.h"

using namespace Qt::StringLiterals;

namespace korvel::gallery {

QList<Case> allCases() {
    return pairCases() + loginCases() + alertCases() + noticeCases() + situationCases() + iconCases();
}

QString longName() {
    return u"Anna-Katharina’s third telephone, the blue one with the cracked corner that lives in the kitchen drawer"_s;
}

QString unbrokenName() { return u"device"_s + QString(194, u'x'); }

QString rightToLeftName() { return u"הטלפון של אנה 👩🏽‍🔬📱"_s; }

} // namespace korvel::gallery
