#include "app/Translation.h"

#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QLocale>
#include <QPointer>
#include <QTranslator>

// Outside the namespace, as Qt wants it: a static library's resources aren't there by themselves.
static void loadTranslationResources()
{
    Q_INIT_RESOURCE(translations);
}

namespace nimbrel::translation {

namespace {

void load(QPointer<QTranslator> &current, const QLocale &locale, const QString &name,
          const QString &folder)
{
    delete current;
    current = new QTranslator(QCoreApplication::instance());
    if (current->load(locale, name, QStringLiteral("_"), folder))
        QCoreApplication::installTranslator(current);
}

// One for all texts: never two in one window.
QLocale spoken(const QStringList &languages)
{
    for (const QString &name : languages) {
        const QLocale each(name);
        const QString code = each.name().section(u'_', 0, 0);
        if (each.language() == QLocale::English ||
            QFile::exists(QStringLiteral(":/translations/nimbrel_%1.qm").arg(code)))
            return each;
    }
    return {QLocale::English};
}

} // namespace

void install(const QStringList &languages)
{
    static QPointer<QTranslator> qtTexts;
    static QPointer<QTranslator> ourTexts;
    loadTranslationResources();
    const QLocale language = spoken(languages);
    load(qtTexts, language, QStringLiteral("qtbase"),
         QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    // Dates in the same language as the texts around them, in the user's own form where it is
    // theirs.
    const QLocale users = QLocale::system();
    QLocale::setDefault(users.language() == language.language() ? users : language);
    load(ourTexts, language, QStringLiteral("nimbrel"), QStringLiteral(":/translations"));
}

} // namespace nimbrel::translation
