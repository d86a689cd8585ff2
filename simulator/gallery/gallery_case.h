#pragma once

#include <QList>
#include <QString>
#include <functional>
#include <memory>

namespace korvel::gallery {

/// What makes a difference to how a case looks.
enum class Differs { InLanguageAndAppearance, InLanguage, InNothing };

/// One thing that the program can show, in one state.
struct Case {
    QString group; ///< Heading on the page.
    QString name;  ///< Of its pictures: lower case and hyphens, unique in the group.
    /// Puts it on the screen as the program does; it goes with the result.
    std::function<std::shared_ptr<void>()> show;
    Differs differs = Differs::InLanguageAndAppearance;
};

/// Every case, grouped, in the language that is set now.
QList<Case> allCases();

QList<Case> pairCases();
QList<Case> loginCases();
QList<Case> alertCases();
QList<Case> noticeCases();
QList<Case> situationCases();
QList<Case> iconCases();

/// Names from outside as they can be at worst.
QString longName();        ///< Many words.
QString unbrokenName();    ///< 200 characters without a space.
QString rightToLeftName(); ///< Hebrew, with emoji.
/// Every name that a case may show, a person's or a device's, longer ones before what they begin with.
QStringList sampleNames();

} // namespace korvel::gallery
