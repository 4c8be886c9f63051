#include "app/Translation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QPointer>
#include <QTranslator>

// Outside the namespace, as Qt wants it: a static library's resources aren't there by themselves.
static void loadTranslationResources()
{
    Q_INIT_RESOURCE(translations);
}

namespace nimbrel::translation {

namespace {

void install(QPointer<QTranslator> &current, const QLocale &locale, const QString &name,
             const QString &folder)
{
    delete current;
    current = new QTranslator(QCoreApplication::instance());
    if (current->load(locale, name, QStringLiteral("_"), folder))
        QCoreApplication::installTranslator(current);
}

} // namespace

void install(const QLocale &locale)
{
    static QPointer<QTranslator> qtTexts;
    static QPointer<QTranslator> ourTexts;
    loadTranslationResources();
    install(qtTexts, locale, QStringLiteral("qtbase"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(ourTexts, locale, QStringLiteral("nimbrel"), QStringLiteral(":/translations"));
}

} // namespace nimbrel::translation
