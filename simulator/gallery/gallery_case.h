#pragma once

#include <QList>
#include <QString>
#include <functional>
#include <memory>

namespace korvel::gallery {

/// The settings that change the picture of a case.
enum class Differs { InLanguageAndAppearance, InLanguage, InNothing };

/// One thing that the program shows, in one state.
struct Case {
    QString group; ///< Heading on the page.
    QString name;  ///< File name of its pictures: lower case and hyphens, unique in the group.
    /// Shows it as the program does, until the result is destroyed.
    std::function<std::shared_ptr<void>()> show;
    Differs differs = Differs::InLanguageAndAppearance;
};

/// All cases, grouped, in the current language.
QList<Case> allCases();

QList<Case> pairCases();
QList<Case> loginCases();
QList<Case> alertCases();
QList<Case> noticeCases();
QList<Case> situationCases();
QList<Case> iconCases();

/// Difficult names from outside.
QString longName();        ///< Many words.
QString unbrokenName();    ///< 200 characters without a space.
QString rightToLeftName(); ///< Hebrew, with emoji.
/// All names of persons and devices in the cases; a name comes before its prefixes.
QStringList sampleNames();

} // namespace korvel::gallery
