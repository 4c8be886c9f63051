#include "platform/SettingsFile.h"

#include "support/Files.h"
#include "support/PrivateDesktop.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QSettings>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace fs = std::filesystem;

QString keyName(const char *name = "key")
{
    return QString::fromLatin1(name);
}

unsigned modeOf(const std::string &path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

// The copies that stand beside the file.
std::vector<std::string> copiesOf(const std::string &path)
{
    std::vector<std::string> copies;
    for (const auto &entry : fs::directory_iterator(fs::path(path).parent_path()))
        if (entry.path().string().starts_with(path + "."))
            copies.push_back(entry.path());
    std::sort(copies.begin(), copies.end());
    return copies;
}

// Every byte value, and what the coding has to keep apart.
QByteArray difficultBytes()
{
    QByteArray bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes.append(static_cast<char>(byte));
    return bytes + QByteArrayLiteral("\x01"
                                     "1)\n;,=\"\\");
}

QStringList difficultTexts()
{
    return {QStringLiteral(""),
            QStringLiteral(" blanks around "),
            QStringLiteral("a=b;c,d#e"),
            QStringLiteral("\"quoted\" \\ back"),
            QStringLiteral("@at"),
            QStringLiteral("@ByteArray(no bytes)"),
            QStringLiteral("line\nbreak\r\ttab\x01"
                           "1\x7F"),
            QStringLiteral("[section]"),
            QStringLiteral("; no comment"),
            QStringLiteral(u"Tr\u00E9sor \u6587 \U0001F600 \u2028 \uFEFF"),
            QStringLiteral("zero ") + QChar(u'\0') + QStringLiteral("7"),
            QStringLiteral("%41 %U0041"),
            QStringLiteral("@Variant("),
            QStringLiteral("@(@@"),
            QStringLiteral("a, @DateTime(x)"),
            QStringLiteral(" @at"),
            QStringLiteral("7\x01@40)")};
}

// No file may grow beyond `size` bytes while it lives: writing ends in the middle, as on a full
// disk.
class SmallFiles final
{
public:
    explicit SmallFiles(rlim_t size) : _handler(::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &_before), 0);
        const rlimit small = {size, _before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    }
    ~SmallFiles()
    {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &_before), 0);
        ::signal(SIGXFSZ, _handler);
    }
    SmallFiles(const SmallFiles &) = delete;
    SmallFiles &operator=(const SmallFiles &) = delete;

private:
    rlimit _before = {};
    sighandler_t _handler;
};

// Waits for a child that does `work` and ends without any clearing up. Its wait status.
template <class Work>
int inChild(Work work)
{
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

// A list in a list in a list, as QSettings writes typed values.
std::string nestedVariant(int depth)
{
    std::string text = "key=@Variant(";
    for (int level = 0; level < depth; ++level)
        text += R"(\x0\x0\x0\x9\x0\x0\x0\x1)";
    return text + ")\n";
}

class SettingsFileTest : public testing::Test
{
protected:
    // What a later run reads.
    [[nodiscard]] QVariant stored(const QString &name = keyName()) const
    {
        return SettingsFile(path()).value(name);
    }
    [[nodiscard]] QString path() const { return QString::fromStdString(file); }
    bool store(const QVariant &value, const QString &name = keyName()) const
    {
        SettingsFile settings(path());
        settings.setValue(name, value);
        return settings.synchronize();
    }

    TempFolder folder;
    std::string file = folder / "Nimbrel/Nimbrel.conf";
};

TEST_F(SettingsFileTest, UsersOwnFileLiesInTheConfigurationFolder)
{
    const PrivateDesktop desktop({.bus = false, .keyring = false});
    SettingsFile settings;
    settings.setValue(keyName(), true);
    ASSERT_TRUE(settings.synchronize());
    EXPECT_NE(readFile(desktop.config() + "/Nimbrel/Nimbrel.conf").find("key=true"),
              std::string::npos);
}

TEST_F(SettingsFileTest, AbsentFileIsEmptyAndNoTrouble)
{
    SettingsFile settings(path());
    EXPECT_EQ(settings.trouble(), std::nullopt);
    EXPECT_FALSE(settings.value(keyName()).isValid());
    EXPECT_FALSE(settings.boolValue(keyName()));
    EXPECT_TRUE(settings.synchronize());
    EXPECT_FALSE(fs::exists(file)); // there was nothing to store
}

TEST_F(SettingsFileTest, DefaultsStandForAbsentKeysAndAreNotStored)
{
    SettingsFile settings(path());
    settings.registerDefaults({{preferencesKey::createAliases, true}});
    EXPECT_TRUE(settings.boolValue(preferencesKey::createAliases));
    settings.setValue(keyName(), 1);
    ASSERT_TRUE(settings.synchronize());
    EXPECT_FALSE(stored(preferencesKey::createAliases).isValid());
    settings.setValue(preferencesKey::createAliases, false);
    EXPECT_FALSE(settings.boolValue(preferencesKey::createAliases));
    settings.remove(preferencesKey::createAliases);
    EXPECT_TRUE(settings.boolValue(preferencesKey::createAliases));
}

TEST_F(SettingsFileTest, BooleansComeBack)
{
    for (const bool value : {true, false}) {
        ASSERT_TRUE(store(value));
        EXPECT_EQ(SettingsFile(path()).boolValue(keyName()), value);
        EXPECT_EQ(stored().toBool(), value);
    }
}

TEST_F(SettingsFileTest, BooleansMayBeWrittenByHand)
{
    fs::create_directory(folder / "Nimbrel");
    for (const char *yes : {"true", "True", "yes", "on", "ON", "1", "\"1\"", " yes ; why"}) {
        writeFile(file, fmt::format("[General]\nkey={}\n", yes));
        EXPECT_TRUE(SettingsFile(path()).boolValue(keyName())) << yes;
    }
    for (const char *no : {"false", "no", "off", "0", "", "maybe", "@ByteArray()"}) {
        writeFile(file, fmt::format("[General]\nkey={}\n", no));
        EXPECT_FALSE(SettingsFile(path()).boolValue(keyName())) << no;
    }
}

TEST_F(SettingsFileTest, BytesComeBack)
{
    ASSERT_TRUE(store(difficultBytes()));
    EXPECT_EQ(stored(), QVariant(difficultBytes()));
    ASSERT_TRUE(store(QByteArray()));
    EXPECT_EQ(stored().toByteArray(), QByteArray());
    EXPECT_TRUE(stored().isValid());
}

TEST_F(SettingsFileTest, TextsComeBack)
{
    for (const QString &text : difficultTexts()) {
        ASSERT_TRUE(store(text));
        EXPECT_EQ(stored(), QVariant(text)) << text.toStdString();
        EXPECT_EQ(SettingsFile(path()).trouble(), std::nullopt) << text.toStdString();
    }
}

TEST_F(SettingsFileTest, MomentsAndNumbersComeBackAsText)
{
    const QDateTime moment = QDateTime::fromMSecsSinceEpoch(1'795'300'000'123, Qt::UTC);
    ASSERT_TRUE(store(moment));
    EXPECT_EQ(stored(), QVariant(QStringLiteral("2026-11-21T22:26:40.123Z")));
    EXPECT_EQ(stored().toDateTime(), moment);
    ASSERT_TRUE(store(-7));
    EXPECT_EQ(stored().toInt(), -7);
}

TEST_F(SettingsFileTest, HalfCharactersAreReplacedAndHurtNothingElse)
{
    SettingsFile settings(path());
    settings.setValue(keyName("half"), QString(QChar(0xD83D)) + QStringLiteral("f"));
    settings.setValue(keyName(), keyName("whole"));
    ASSERT_TRUE(settings.synchronize());
    EXPECT_TRUE(stored(keyName("half")).toString().endsWith(u'f'));
    EXPECT_EQ(stored(), QVariant(keyName("whole")));
}

TEST_F(SettingsFileTest, KeysMayHoldMoreThanLetters)
{
    for (const QString &name :
         {QStringLiteral("a b"), QStringLiteral("a=b;c"), QStringLiteral("#a"),
          QStringLiteral("\"q\""), QStringLiteral(u"Tr\u00E9sor \u6587"), QStringLiteral("a/b c/d"),
          QStringLiteral("General/x"), QStringLiteral("[x]"), QStringLiteral("@Variant(")}) {
        ASSERT_TRUE(store(1, name));
        EXPECT_EQ(stored(name).toInt(), 1) << name.toStdString();
    }
    EXPECT_EQ(SettingsFile(path()).trouble(), std::nullopt);
}

TEST_F(SettingsFileTest, RemovedKeysAreGone)
{
    ASSERT_TRUE(store(1));
    SettingsFile settings(path());
    settings.remove(keyName());
    EXPECT_FALSE(settings.value(keyName()).isValid());
    ASSERT_TRUE(settings.synchronize());
    EXPECT_FALSE(stored().isValid());
}

TEST_F(SettingsFileTest, ChangesAreSeenAtOnceAndStoredAtTheEndAtTheLatest)
{
    {
        SettingsFile settings(path());
        settings.setValue(keyName(), keyName("x"));
        EXPECT_EQ(settings.value(keyName()), QVariant(keyName("x")));
        EXPECT_FALSE(fs::exists(file));
    }
    EXPECT_EQ(stored(), QVariant(keyName("x")));
}

TEST_F(SettingsFileTest, WhatOthersStoreIsMergedIn)
{
    SettingsFile settings(path());
    ASSERT_TRUE(store(keyName("theirs"), keyName("other")));
    settings.setValue(keyName(), keyName("ours"));
    ASSERT_TRUE(settings.synchronize());
    EXPECT_EQ(settings.value(keyName("other")), QVariant(keyName("theirs")));
    EXPECT_EQ(stored(keyName("other")), QVariant(keyName("theirs")));
    EXPECT_EQ(stored(), QVariant(keyName("ours")));
    ASSERT_TRUE(store(keyName("newer")));
    ASSERT_TRUE(settings.synchronize());
    EXPECT_EQ(settings.value(keyName()), QVariant(keyName("newer")));
}

TEST_F(SettingsFileTest, FileAndFolderAreNobodyElsesBusiness)
{
    const mode_t before = ::umask(0);
    EXPECT_TRUE(store(1));
    ::umask(before);
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(folder / "Nimbrel"), 0700U);
}

TEST_F(SettingsFileTest, WiderFileIsNarrowedAtTheNextWrite)
{
    ASSERT_TRUE(store(1));
    ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
    ASSERT_EQ(::chmod((folder / "Nimbrel").c_str(), 0755), 0);
    ASSERT_TRUE(store(2));
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(folder / "Nimbrel"), 0755U); // somebody's own choice
}

TEST_F(SettingsFileTest, FailedWriteLeavesTheOldFileWholeAndTells)
{
    ASSERT_TRUE(store(keyName("old")));
    const std::string before = readFile(file);
    SettingsFile settings(path());
    settings.setValue(keyName(), QString(5'000, u'n'));
    bool isStored = true;
    {
        const SmallFiles limit(1'000);
        isStored = settings.synchronize();
    }
    EXPECT_FALSE(isStored);
    EXPECT_EQ(settings.trouble(),
              QStringLiteral("Could not keep the preferences in a temporary file in \"%1\".")
                  .arg(QDir::tempPath()));
    EXPECT_EQ(readFile(file), before);
    EXPECT_TRUE(copiesOf(file).empty());
    // It isn't forgotten.
    EXPECT_TRUE(settings.synchronize());
    EXPECT_EQ(settings.trouble(), std::nullopt);
    EXPECT_EQ(stored().toString().size(), 5'000);
}

// What a full disk does to it, too: the first bytes are written, and no error is reported.
TEST_F(SettingsFileTest, QSettingsAloneTruncatesTheFileOnAFullDisk)
{
    const QString other = QString::fromStdString(folder / "qsettings.conf");
    const std::string text = "[General]\nkey=old\nlast=1\n";
    writeFile(other.toStdString(), text);
    {
        QSettings settings(other, QSettings::IniFormat);
        settings.setValue(keyName(), QString(5'000, u'n'));
        const SmallFiles limit(1'000);
        settings.sync();
    }
    EXPECT_EQ(readFile(other.toStdString()).size(), 1'000U);
}

TEST_F(SettingsFileTest, FileThatCannotBeReplacedIsTroubleThatNamesTheCause)
{
    fs::create_directory(folder / "Nimbrel");
    fs::create_symlink("missing/nimbrel.conf", file);
    SettingsFile settings(path());
    EXPECT_EQ(settings.trouble(), std::nullopt);
    settings.setValue(keyName(), 1);
    EXPECT_FALSE(settings.synchronize());
    const std::string trouble = settings.trouble().value_or(QString()).toStdString();
    EXPECT_TRUE(trouble.starts_with("Could not write \"")) << trouble;
    EXPECT_TRUE(trouble.ends_with("nimbrel.conf\": No such file or directory.")) << trouble;
    fs::create_directory(folder / "Nimbrel/missing");
    EXPECT_TRUE(settings.synchronize());
    EXPECT_EQ(modeOf(folder / "Nimbrel/missing/nimbrel.conf"), 0600U);
    EXPECT_EQ(stored().toInt(), 1);
}

TEST_F(SettingsFileTest, TooLargeFileIsTroubleAndStaysAsItIs)
{
    fs::create_directory(folder / "Nimbrel");
    writeFile(file, "[General]\nkey=1\n");
    fs::resize_file(file, 33 * 1024 * 1024);
    SettingsFile settings(path());
    EXPECT_EQ(settings.trouble(),
              QStringLiteral("\"%1\" is larger than 33554432 bytes.").arg(path()));
    settings.setValue(keyName(), 2);
    EXPECT_FALSE(settings.synchronize());
    EXPECT_EQ(fs::file_size(file), 33U * 1024 * 1024);
    settings.remove(keyName());
    fs::remove(file);
}

TEST_F(SettingsFileTest, FolderInItsPlaceIsTrouble)
{
    fs::create_directories(file);
    SettingsFile settings(path());
    const auto trouble = QStringLiteral("Could not read \"%1\": Is a directory.").arg(path());
    EXPECT_EQ(settings.trouble(), trouble);
    EXPECT_FALSE(settings.synchronize());
    settings.setValue(keyName(), 1);
    EXPECT_EQ(settings.value(keyName()).toInt(), 1); // for this run
    EXPECT_FALSE(settings.synchronize());
    EXPECT_EQ(settings.trouble(), trouble);
    EXPECT_EQ(settings.keepCopy(keyName("damaged")), std::nullopt);
    fs::remove(file);
    EXPECT_TRUE(settings.synchronize());
    EXPECT_EQ(stored().toInt(), 1);
}

TEST_F(SettingsFileTest, PipeInItsPlaceIsTroubleAndNothingWaits)
{
    fs::create_directory(folder / "Nimbrel");
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    SettingsFile settings(path());
    EXPECT_EQ(settings.trouble(), QStringLiteral("\"%1\" is not a regular file.").arg(path()));
    settings.setValue(keyName(), 1);
    EXPECT_FALSE(settings.synchronize());
    fs::remove(file);
}

TEST_F(SettingsFileTest, FileInTheFoldersPlaceIsTrouble)
{
    writeFile(folder / "Nimbrel", "x");
    SettingsFile settings(path());
    settings.setValue(keyName(), 1);
    EXPECT_FALSE(settings.synchronize());
    EXPECT_NE(settings.trouble(), std::nullopt);
    fs::remove(folder / "Nimbrel");
}

TEST_F(SettingsFileTest, NoPlaceIsTrouble)
{
    SettingsFile settings{QString()};
    settings.setValue(keyName(), 1);
    EXPECT_FALSE(settings.synchronize());
    EXPECT_EQ(settings.trouble(),
              QStringLiteral("There is no home folder to keep the preferences in."));
    settings.remove(keyName());
}

TEST_F(SettingsFileTest, DamagedFileIsCopiedBeforeTheFirstWriteReplacesIt)
{
    fs::create_directory(folder / "Nimbrel");
    const std::string damaged = "[General]\nkey=good\n" + noise(300, 1) + "\nother=1\n";
    writeFile(file, damaged);
    SettingsFile settings(path());
    const auto trouble =
        QStringLiteral("Some lines of the preferences in \"%1\" can't be understood.").arg(path());
    EXPECT_EQ(settings.trouble(), trouble);
    EXPECT_EQ(settings.value(keyName()), QVariant(keyName("good")));
    EXPECT_TRUE(settings.synchronize()); // nothing to store
    EXPECT_EQ(settings.trouble(), trouble);
    EXPECT_EQ(readFile(file), damaged);
    EXPECT_TRUE(copiesOf(file).empty());

    settings.setValue(keyName("new"), 2);
    ASSERT_TRUE(settings.synchronize());
    EXPECT_EQ(settings.trouble(), std::nullopt);
    ASSERT_EQ(copiesOf(file).size(), 1U);
    EXPECT_TRUE(copiesOf(file).front().starts_with(file + ".damaged-"));
    EXPECT_EQ(readFile(copiesOf(file).front()), damaged);
    EXPECT_EQ(stored(), QVariant(keyName("good")));
    EXPECT_EQ(stored(keyName("other")).toInt(), 1);
    EXPECT_EQ(stored(keyName("new")).toInt(), 2);
    ASSERT_TRUE(store(3));
    EXPECT_EQ(copiesOf(file).size(), 1U); // the file is whole by now
}

TEST_F(SettingsFileTest, LinesThatCannotBeUnderstoodAreDamage)
{
    fs::create_directory(folder / "Nimbrel");
    for (const char *line : {"garbage",
                             "=1",
                             " =1",
                             "key",
                             "key\\=1",
                             "k\"e\"y=1",
                             "[open",
                             "[]",
                             "[a\"b]",
                             "[a\\]",
                             "[a;b]",
                             "[a] b",
                             "key=\"open",
                             "key=\\",
                             "key=\\q",
                             "key=\\x",
                             "key=\\x12345",
                             "key=\\1",
                             "key=\\07",
                             "key=a, b",
                             "key=@ByteArray(open",
                             "key=\"@String(open\"",
                             "key=@home",
                             "\xFF\xFE",
                             "key=\xC3"}) {
        writeFile(file, std::string("[General]\n") + line + "\nfine=1\n");
        SettingsFile settings(path());
        EXPECT_NE(settings.trouble(), std::nullopt) << line;
        EXPECT_FALSE(settings.value(keyName()).isValid()) << line;
        EXPECT_EQ(settings.value(keyName("fine")).toInt(), 1) << line;
    }
}

// Each of them is a typed value for QSettings.
TEST_F(SettingsFileTest, TypedValuesAreDamageHoweverTheyHide)
{
    fs::create_directory(folder / "Nimbrel");
    int number = 0;
    for (const char *value :
         {"@Point(1 2)",        "  @Point(1 2)",           "\"@Point(1 2)\"",
          "\"@\"Point(1 2)",    "\"@\" Point(1 2)",        "\"\" @Point(1 2)",
          "@Poi\"nt(1 2)\"",    "\\x40Point(1 2)",         "\\x0040Point(1 2)",
          "\\x10040Point(1 2)", "\\100Point(1 2)",         "\\0100Point(1 2)",
          "\\q@Point(1 2)",     "@\\qPoint(1 2)",          "@\\x50oint(1 2)",
          "@Poi\\\nnt(1 2)",    "\xEF\xBB\xBF@Point(1 2)", "\"\xEF\xBB\xBF\"@Point(1 2)",
          "@Point(1 2);",       "\\\n@Point(1 2)"}) {
        const std::string text = fmt::format("[General]\nkey={}\nfine=1\n", value);
        // QSettings remembers files by path, size and time.
        const std::string unique = folder.makeFolder(fmt::format("q{}", ++number)) + "/q.conf";
        writeFile(unique, text);
        const QSettings other(QString::fromStdString(unique), QSettings::IniFormat);
        EXPECT_EQ(other.value(keyName()).typeId(), QMetaType::QPoint) << value;

        writeFile(file, text);
        const SettingsFile settings(path());
        EXPECT_NE(settings.trouble(), std::nullopt) << value;
        EXPECT_NE(settings.value(keyName()).typeId(), QMetaType::QPoint) << value;
        EXPECT_EQ(settings.value(keyName("fine")).toInt(), 1) << value;
    }
}

TEST_F(SettingsFileTest, ValueThatEndsQSettingsIsDamage)
{
    fs::create_directory(folder / "Nimbrel");
    writeFile(file, "[General]\nfine=1\n" + nestedVariant(20'000));
    const int status = inChild([this] {
        const rlimit small = {512 * 1024, 512 * 1024};
        const rlimit none = {0, 0};
        if (::setrlimit(RLIMIT_STACK, &small) == 0 && ::setrlimit(RLIMIT_CORE, &none) == 0)
            static_cast<void>(QSettings(path(), QSettings::IniFormat).value(keyName()));
    });
    EXPECT_NE(status, 0);
    const SettingsFile settings(path());
    EXPECT_NE(settings.trouble(), std::nullopt);
    EXPECT_EQ(settings.value(keyName("fine")).toInt(), 1);
    EXPECT_FALSE(settings.value(keyName()).isValid());
}

TEST_F(SettingsFileTest, SeventeenMegabytesOfItAreDamageToo)
{
    fs::create_directory(folder / "Nimbrel");
    writeFile(file, "[General]\nfine=1\n" + nestedVariant(17 * 1024 * 1024 / 24));
    SettingsFile settings(path());
    EXPECT_EQ(settings.value(keyName("fine")).toInt(), 1);
    settings.setValue(keyName("new"), 2);
    ASSERT_TRUE(settings.synchronize());
    EXPECT_EQ(readFile(file), "[General]\nfine=1\nnew=2\n");
    EXPECT_EQ(copiesOf(file).size(), 1U);
}

TEST_F(SettingsFileTest, CommentsAndBlanksAreNoDamage)
{
    fs::create_directory(folder / "Nimbrel");
    writeFile(file, "\xEF\xBB\xBF; don't \"\r\n# mine\r\n#a=@Variant(\r\r\n [General] ; here\n"
                    "\t b = 1 ; \" one\n\nc=\"2;\" \n[Other]\nx=y");
    SettingsFile settings(path());
    EXPECT_EQ(settings.trouble(), std::nullopt);
    EXPECT_EQ(settings.value(keyName("b")), QVariant(keyName("1")));
    EXPECT_EQ(settings.value(keyName("c")), QVariant(keyName("2;")));
    settings.setValue(keyName("d"), true);
    ASSERT_TRUE(settings.synchronize());
    EXPECT_EQ(readFile(file), "[General]\nb=1\nc=\"2;\"\nd=true\n\n[Other]\nx=y\n");
    EXPECT_TRUE(copiesOf(file).empty());
}

TEST_F(SettingsFileTest, FiveHundredMutationsAreSurvivedAndStoredOver)
{
    ASSERT_TRUE(store(difficultBytes()));
    ASSERT_TRUE(store(QStringLiteral("{\"/a\":\"@b\"}"), preferencesKey::volumesInfo));
    const std::string good = readFile(file);
    int damaged = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        std::mt19937 dice(seed);
        std::string text = good;
        for (unsigned change = 0; change < 4; ++change)
            text[dice() % text.size()] = static_cast<char>(dice());
        if (seed % 3 == 0)
            text.insert(dice() % text.size(), noise(20, seed));
        writeFile(file, text);
        SettingsFile settings(path());
        const bool isDamaged = settings.trouble().has_value();
        damaged += isDamaged ? 1 : 0;
        settings.setValue(keyName("new"), seed);
        ASSERT_TRUE(settings.synchronize()) << seed;
        EXPECT_EQ(stored(keyName("new")).toUInt(), seed);
        EXPECT_EQ(SettingsFile(path()).trouble(), std::nullopt) << seed;
        ASSERT_EQ(copiesOf(file).size(), isDamaged ? 1U : 0U) << seed;
        if (isDamaged) {
            EXPECT_EQ(readFile(copiesOf(file).front()), text);
            fs::remove(copiesOf(file).front());
        }
    }
    EXPECT_GT(damaged, 100);
}

TEST_F(SettingsFileTest, LinkedFileStaysALink)
{
    const std::string target = folder.makeFolder("dotfiles") + "/nimbrel.conf";
    writeFile(target, "[General]\nkey=old\n");
    fs::create_directory(folder / "Nimbrel");
    fs::create_symlink("../dotfiles/nimbrel.conf", file);
    ASSERT_TRUE(store(keyName("new")));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(readFile(target), "[General]\nkey=new\n");
    EXPECT_EQ(modeOf(target), 0600U);
}

TEST_F(SettingsFileTest, LockFileOfADeadProgramIsNothingToWaitFor)
{
    ASSERT_TRUE(store(1));
    EXPECT_EQ(inChild([this] {
                  QLockFile lock(path() + QStringLiteral(".lock"));
                  if (!lock.lock())
                      ::_exit(1);
                  ::_exit(0); // without unlocking
              }),
              0);
    ASSERT_TRUE(fs::exists(file + ".lock"));
    EXPECT_TRUE(store(2));
    EXPECT_EQ(stored().toInt(), 2);
    EXPECT_FALSE(fs::exists(file + ".lock"));
}

TEST_F(SettingsFileTest, WriterWaitsForAnotherWriterAndNotForEver)
{
    ASSERT_TRUE(store(1));
    QLockFile other(path() + QStringLiteral(".lock"));
    ASSERT_TRUE(other.lock());
    SettingsFile settings(path());
    settings.setValue(keyName(), 2);
    EXPECT_FALSE(settings.synchronize());
    EXPECT_EQ(settings.trouble(),
              QStringLiteral("Another program keeps the preferences from being stored."));
    other.unlock();
    EXPECT_TRUE(settings.synchronize());
    EXPECT_EQ(stored().toInt(), 2);
}

TEST_F(SettingsFileTest, CopiesNeverStandOverEachOther)
{
    ASSERT_TRUE(store(1));
    ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
    SettingsFile settings(path());
    std::vector<std::string> copies;
    for (int i = 0; i < 4; ++i)
        copies.push_back(settings.keepCopy(QStringLiteral("unreadable")).value().toStdString());
    EXPECT_EQ(copiesOf(file).size(), 4U);
    for (const std::string &copy : copies) {
        EXPECT_TRUE(copy.starts_with(file + ".unreadable-")) << copy;
        EXPECT_EQ(readFile(copy), readFile(file));
        EXPECT_EQ(modeOf(copy), 0600U);
    }
    const bool isNumbered = std::any_of(copies.begin(), copies.end(),
                                        [](const auto &copy) { return copy.ends_with("-2"); });
    EXPECT_TRUE(isNumbered); // four copies don't take four seconds
}

TEST_F(SettingsFileTest, NothingToCopyGivesNoCopy)
{
    EXPECT_EQ(SettingsFile(path()).keepCopy(keyName("x")), std::nullopt);
}

TEST_F(SettingsFileTest, QSettingsReadsTheFile)
{
    SettingsFile settings(path());
    settings.setValue(keyName("bytes"), difficultBytes());
    settings.setValue(keyName("flag"), true);
    settings.setValue(keyName("at"), keyName("@at"));
    ASSERT_TRUE(settings.synchronize());
    const QSettings other(path(), QSettings::IniFormat);
    EXPECT_EQ(other.value(keyName("bytes")).toByteArray(), difficultBytes());
    EXPECT_TRUE(other.value(keyName("flag")).toBool());
    EXPECT_EQ(other.value(keyName("at")).toString(), keyName("@at"));
}

TEST_F(SettingsFileTest, FileOfQSettingsIsRead)
{
    const auto texts = difficultTexts();
    {
        QSettings other(path(), QSettings::IniFormat);
        other.setValue(keyName("bytes"), difficultBytes());
        other.setValue(keyName("flag"), true);
        other.setValue(keyName("map/a b"), keyName("c"));
        for (qsizetype i = 0; i < texts.size(); ++i)
            other.setValue(QString::number(i), texts[i]);
    }
    const SettingsFile settings(path());
    EXPECT_EQ(settings.trouble(), std::nullopt);
    EXPECT_EQ(settings.value(keyName("bytes")), QVariant(difficultBytes()));
    EXPECT_TRUE(settings.boolValue(keyName("flag")));
    EXPECT_EQ(settings.value(keyName("map/a b")), QVariant(keyName("c")));
    for (qsizetype i = 0; i < texts.size(); ++i)
        EXPECT_EQ(settings.value(QString::number(i)), QVariant(texts[i])) << i;
}

} // namespace

} // namespace nimbrel::test
