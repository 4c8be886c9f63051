#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace nimbrel {

// The files that come with the application: `folder`/LANGUAGE/NAME.TYPE for what is localised, and
// `folder`/NAME.TYPE for the rest.
class Resources final
{
public:
    // $NIMBREL_RESOURCES where it is set, else share/nimbrel beside the program's own folder, in
    // the languages of the user's locale.
    Resources();
    Resources(QString folder, const QStringList &languages);

    // pathForResource:ofType:
    // The first that exists: in each of the user's languages ("de_DE", "de"), then unlocalised.
    [[nodiscard]] std::optional<QString> path(const QString &name, const QString &type) const;
    // pathForResource:ofType:inDirectory:forLocalization:
    [[nodiscard]] std::optional<QString> path(const QString &name, const QString &type,
                                              const QString &localization) const;

private:
    QString _folder;
    QStringList _languages;
};

} // namespace nimbrel
