#include "app/Translation.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "config/InformationFile.h"

#include <QFile>
#include <QXmlStreamReader>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace nimbrel::test {
namespace {

struct Entry
{
    QString key;
    QString german;
};

// A control character stands as an element of its own.
QString elementText(QXmlStreamReader &reader)
{
    QString text;
    while (reader.readNext() != QXmlStreamReader::EndElement && !reader.atEnd()) {
        if (reader.isCharacters())
            text += reader.text();
        if (!reader.isStartElement())
            continue;
        const QString value = reader.attributes().value(QLatin1String("value")).toString();
        text += QChar(value.mid(1).toUShort(nullptr, 16));
        reader.skipCurrentElement();
    }
    return text;
}

// What the translator's own file holds.
std::vector<Entry> entries()
{
    QFile file(QStringLiteral(NIMBREL_SOURCE_FOLDER "/resources/translations/nimbrel_de.ts"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    std::vector<Entry> entries;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == QLatin1String("source"))
            entries.push_back({elementText(reader), {}});
        else if (reader.isStartElement() && reader.name() == QLatin1String("translation"))
            entries.back().german = elementText(reader);
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return entries;
}

std::string next()
{
    return texts::tr("Next").toStdString();
}

std::string qtCancel()
{
    return QCoreApplication::translate("QPlatformTheme", "Cancel").toStdString();
}

std::unique_ptr<QCoreApplication> madeApplication()
{
    static int count = 1;
    static std::string name = "test";
    static char *arguments[] = {name.data(), nullptr};
    return QCoreApplication::instance() != nullptr
               ? nullptr // the program's own
               : std::make_unique<QCoreApplication>(count, arguments);
}

class TranslationTest : public testing::Test
{
protected:
    ~TranslationTest() override { translation::install({QStringLiteral("en")}); }

    static void use(const char *locale) { translation::install({QString::fromLatin1(locale)}); }

private:
    std::unique_ptr<QCoreApplication> _application = madeApplication();
};

TEST_F(TranslationTest, WithoutALanguageTheKeyIsTheText)
{
    EXPECT_EQ(next(), "Next");
    EXPECT_EQ(qtCancel(), "Cancel");
}

TEST_F(TranslationTest, EveryKindOfGermanIsGerman)
{
    for (const char *locale : {"de", "de_DE", "de_AT", "de_CH"}) {
        use("en");
        use(locale);
        EXPECT_EQ(next(), "Weiter") << locale;
        EXPECT_EQ(texts::tr("Congratulations!"), u"Herzlichen Glückwunsch!"_qs) << locale;
    }
}

TEST_F(TranslationTest, EnglishAndUnknownLanguagesShowTheKey)
{
    for (const char *locale : {"en", "en_US", "en_GB", "C", "sw"}) {
        use("de");
        use(locale);
        EXPECT_EQ(next(), "Next") << locale;
    }
}

TEST_F(TranslationTest, QtsOwnTextsGoAlong)
{
    use("de_AT");
    EXPECT_EQ(qtCancel(), "Abbrechen");
    use("en");
    EXPECT_EQ(qtCancel(), "Cancel");
}

TEST_F(TranslationTest, TheSameLanguageTwiceIsTakenBackAtOnce)
{
    use("de");
    use("de");
    use("en");
    EXPECT_EQ(next(), "Next");
}

TEST_F(TranslationTest, ATextWithoutATranslationStays)
{
    use("de");
    EXPECT_EQ(texts::tr("no text of ours"), u"no text of ours"_qs);
}

TEST_F(TranslationTest, EveryTextOfTheFileComesOut)
{
    const std::vector<Entry> all = entries();
    EXPECT_GT(all.size(), 100U);
    use("de");
    for (const Entry &entry : all)
        EXPECT_EQ(texts::tr(entry.key.toUtf8().constData()), entry.german)
            << entry.key.toStdString();
}

TEST_F(TranslationTest, EveryArgumentFindsItsPlaceInGerman)
{
    int count = 0;
    use("de");
    for (const Entry &entry : entries()) {
        const qsizetype places =
            entry.key.count(u"%@"_qs) + entry.key.count(u"%d"_qs) + entry.key.count(u"%ld"_qs);
        QStringList arguments;
        while (arguments.size() < places)
            arguments += QStringLiteral("<%1>").arg(arguments.size());
        const QString text = formatted(texts::tr(entry.key.toUtf8().constData()), arguments);
        for (const QString &argument : arguments)
            EXPECT_EQ(text.count(argument), 1) << text.toStdString();
        EXPECT_FALSE(text.contains(u'%')) << text.toStdString();
        count += places > 0 ? 1 : 0;
    }
    EXPECT_GT(count, 8);
}

TEST_F(TranslationTest, TheInformationForStrangersKeepsItsLineEnds)
{
    const std::string key(informationText());
    use("de");
    const QString german = texts::tr(key.c_str());
    EXPECT_TRUE(german.startsWith(u"Dies ist ein verschlüsselter Ordner."_qs));
    EXPECT_EQ(german.count(u"\r\n"_qs), QString::fromStdString(key).count(u"\r\n"_qs));
    EXPECT_EQ(german.count(u'\r'), german.count(u"\r\n"_qs));
    EXPECT_EQ(german.count(u'\n'), german.count(u"\r\n"_qs));
    EXPECT_TRUE(german.endsWith(u"!\r\n"_qs));
}

// In the order of the user's liking.
TEST_F(TranslationTest, TheFirstLanguageThatIsThereServesAllTexts)
{
    const std::vector<std::pair<const char *, const char *>> expected{
        {"en-US en de-DE de", "Next"},
        {"de-AT de en", "Weiter"},
        {"fr-FR fr de-DE de", "Weiter"},
        {"fr-FR fr", "Next"},
        {"", "Next"}};
    for (const auto &[languages, text] : expected) {
        translation::install(QString::fromLatin1(languages).split(u' '));
        EXPECT_EQ(next(), text) << languages;
        EXPECT_EQ(qtCancel() == "Abbrechen", next() == "Weiter") << languages;
    }
}

} // namespace
} // namespace nimbrel::test
