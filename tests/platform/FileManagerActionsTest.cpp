#include "platform/FileManagerActions.h"

#include "platform/fileManagerActions/ThunarActions.h"
#include "support/Files.h"
#include "support/PrivateDesktop.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

const QString program = QStringLiteral("/opt/nimbrel/bin/nimbrel");
const QString title = QStringLiteral("Show Encrypted File");

class FileManagerActionsTest : public testing::Test
{
protected:
    FileManagerActionsTest() { qputenv("XDG_CONFIG_DIRS", (_temp / "xdg").c_str()); }
    ~FileManagerActionsTest() override
    {
        if (_before.isNull())
            qunsetenv("XDG_CONFIG_DIRS");
        else
            qputenv("XDG_CONFIG_DIRS", _before);
    }
    static std::string errorOf(const std::optional<QString> &error)
    {
        return error.value_or(QString()).toStdString();
    }
    static std::string install(const QString &path = program, const QString &name = title)
    {
        return errorOf(fileManagerActions::install(path, name));
    }
    static std::string remove() { return errorOf(fileManagerActions::remove()); }
    static bool areInstalled(const QString &path = program)
    {
        return fileManagerActions::areInstalled(path);
    }
    static void write(const std::string &path, const std::string &text)
    {
        fs::create_directories(fs::path(path).parent_path());
        writeFile(path, text);
    }
    [[nodiscard]] std::string script(const std::string &name = title.toStdString()) const
    {
        return _desktop.data() + "/nautilus/scripts/" + name;
    }

    TempFolder _temp;
    QByteArray _before = qgetenv("XDG_CONFIG_DIRS");
    PrivateDesktop _desktop{{.bus = false, .keyring = false}};
    const std::string nemo = _desktop.data() + "/nemo/actions/com.nimbrel.Nimbrel.nemo_action";
    const std::string dolphin = _desktop.data() + "/kio/servicemenus/com.nimbrel.Nimbrel.desktop";
    const std::string thunar = _desktop.config() + "/Thunar/uca.xml";
};

// Everybody else's, in Thunar's own form.
const std::string foreignActions =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n<action>\n"
    "\t<icon>utilities-terminal</icon>\n\t<name>Open Terminal Here</name>\n"
    "\t<unique-id>1367838-1</unique-id>\n\t<command>exo-open %f &amp; true</command>\n"
    "\t<patterns>*</patterns>\n\t<startup-notify/>\n\t<directories/>\n</action>\n"
    "<!-- mine -->\n<action>\n\t<name>Second</name>\n\t<unique-id>2</unique-id>\n"
    "\t<command>true</command>\n</action>\n</actions>\n";

TEST_F(FileManagerActionsTest, InstalledTheyAreThereAndRemovedTheyAreGone)
{
    EXPECT_FALSE(areInstalled());
    EXPECT_EQ(install(), "");
    EXPECT_TRUE(areInstalled());
    EXPECT_FALSE(areInstalled(QStringLiteral("/elsewhere/nimbrel")));
    EXPECT_EQ(remove(), "");
    EXPECT_FALSE(areInstalled());
    for (const std::string &path : {script(), nemo, dolphin})
        EXPECT_FALSE(fs::exists(path)) << path;
    EXPECT_EQ(remove(), ""); // nothing to do
}

TEST_F(FileManagerActionsTest, EachOfTheFourCounts)
{
    for (const std::string &path : {script(), nemo, dolphin, thunar}) {
        ASSERT_EQ(install(), "");
        ASSERT_TRUE(areInstalled());
        fs::remove(path);
        EXPECT_FALSE(areInstalled()) << path;
    }
}

TEST_F(FileManagerActionsTest, WhatCanNotBeRunIsNotInstalled)
{
    for (const std::string &path : {script(), dolphin}) {
        ASSERT_EQ(install(), "");
        EXPECT_EQ(fs::status(path).permissions(), fs::perms(0755)) << path;
        fs::permissions(path, fs::perms(0644));
        EXPECT_FALSE(areInstalled()) << path;
        ASSERT_EQ(install(), "");
        EXPECT_TRUE(areInstalled()) << path;
    }
}

TEST_F(FileManagerActionsTest, TheEntriesOfNemoAndDolphinAreTheseFiles)
{
    ASSERT_EQ(install(QStringLiteral("/opt/a \"b\" $c 100%\\d/nimbrel")), "");
    const std::string quoted =
        "\"/opt/a \\\\\"b\\\\\" \\\\$c 100%%\\\\\\\\d/nimbrel\" --reveal-encrypted";
    const std::string mark =
        "# com.nimbrel.Nimbrel: Nimbrel made this file, and replaces and removes it.\n";
    EXPECT_EQ(readFile(nemo), "[Nemo Action]\n" + mark +
                                  "Active=true\nName=Show Encrypted File\n"
                                  "Icon-Name=com.nimbrel.Nimbrel\nExec=" +
                                  quoted + " %F\nQuote=double\nSelection=s\nExtensions=any;\n");
    EXPECT_EQ(readFile(dolphin),
              "[Desktop Entry]\n" + mark +
                  "Type=Service\nServiceTypes=KonqPopupMenu/Plugin\nMimeType=all/all;\n"
                  "X-KDE-Protocols=file\nX-KDE-RequiredNumberOfUrls=1\nActions=revealEncrypted;\n\n"
                  "[Desktop Action revealEncrypted]\nName=Show Encrypted File\n"
                  "Icon=com.nimbrel.Nimbrel\nExec=" +
                  quoted + " %f\n");
}

// A program with this name writes down what it was called with.
class InstalledProgram final
{
public:
    InstalledProgram(const TempFolder &folder, const std::string &name)
        : _path(folder.makeFolder(name) + "/nim'brel"), _log(folder / "calls")
    {
        writeFile(_path, "#!/bin/sh\nprintf '<%s>' \"$@\" >>'" + _log + "'\n");
        fs::permissions(_path, fs::perms(0755));
    }
    [[nodiscard]] QString path() const { return QString::fromStdString(_path); }
    // What all calls together were given; as soon as it has that many characters.
    [[nodiscard]] std::string calls(std::size_t size) const
    {
        EXPECT_TRUE(eventually([&] { return fs::exists(_log) && fs::file_size(_log) >= size; }));
        return readFile(_log);
    }

private:
    std::string _path;
    std::string _log;
};

const std::string oddName = "a \"b\" $HOME `id` 100%f \\ $(id)";

TEST_F(FileManagerActionsTest, TheScriptOfNautilusCallsTheProgramOnceAFile)
{
    const InstalledProgram odd(_temp, oddName);
    ASSERT_EQ(install(odd.path()), "");
    const std::string wanted = "<--reveal-encrypted></x/ a $b \\n.txt>";
    const std::string other = "<--reveal-encrypted></x/'b>";
    const RunResult result =
        run({script()}, {.environment = {"NAUTILUS_SCRIPT_SELECTED_FILE_PATHS=/x/ a $b \\n.txt\n"
                                         "/x/'b\n"}});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_THAT(odd.calls(wanted.size() + other.size()),
                testing::AnyOf(wanted + other, other + wanted)); // side by side
}

TEST_F(FileManagerActionsTest, TheScriptOfNautilusTakesNoFileAsNone)
{
    ASSERT_EQ(install(QStringLiteral("/bin/false")), "");
    EXPECT_EQ(run({script()}, {.environment = {"NAUTILUS_SCRIPT_SELECTED_FILE_PATHS="}}).status, 0);
}

TEST_F(FileManagerActionsTest, TheCommandOfThunarStartsTheProgram)
{
    const InstalledProgram odd(_temp, oddName);
    ASSERT_EQ(install(odd.path()), "");
    ASSERT_TRUE(areInstalled(odd.path()));
    const auto actions =
        fileManagerActions::ThunarActions::read(QByteArray::fromStdString(readFile(thunar)));
    ASSERT_TRUE(actions);
    QByteArray command = actions->command().value_or(QByteArray());
    ASSERT_TRUE(command.endsWith(" %f")) << command.toStdString();
    command.chop(2); // as Thunar does: codes first, then a shell
    command = command.replace("%%", "%") + "'/x/a b'";
    EXPECT_EQ(shell(command.toStdString()).status, 0) << command.toStdString();
    const std::string wanted = "<--reveal-encrypted></x/a b>";
    EXPECT_EQ(odd.calls(wanted.size()), wanted);
}

TEST_F(FileManagerActionsTest, ThunarsOtherActionsAndTheirOrderStay)
{
    write(thunar, foreignActions);
    ASSERT_EQ(install(), "");
    const std::string with = readFile(thunar);
    const std::string end = "</actions>\n";
    EXPECT_TRUE(with.starts_with(foreignActions.substr(0, foreignActions.size() - end.size())))
        << with;
    EXPECT_NE(with.find("<command>'/opt/nimbrel/bin/nimbrel' --reveal-encrypted %f</command>"),
              std::string::npos);
    ASSERT_EQ(remove(), "");
    EXPECT_EQ(readFile(thunar), foreignActions);
}

TEST_F(FileManagerActionsTest, AgainInstalledOursKeepsItsPlace)
{
    ASSERT_EQ(install(), "");
    std::string list = readFile(thunar);
    list.insert(list.rfind("</actions>"), "<action><unique-id>later</unique-id></action>\n");
    write(thunar, list);
    ASSERT_EQ(install(QStringLiteral("/new/nimbrel"), QStringLiteral("Other & more")), "");
    const std::string again = readFile(thunar);
    EXPECT_LT(again.find("<name>Other &amp; more</name>"), again.find("later"));
    EXPECT_EQ(again.find("/opt/nimbrel"), std::string::npos);
    EXPECT_TRUE(areInstalled(QStringLiteral("/new/nimbrel")));
    EXPECT_FALSE(areInstalled());
}

TEST_F(FileManagerActionsTest, OursOfWhichThereAreTwoBecomesOne)
{
    ASSERT_EQ(install(), "");
    std::string list = readFile(thunar);
    const auto first = list.find("<action>");
    const auto end = list.rfind("</actions>");
    list.insert(end, list.substr(first, end - first));
    write(thunar, list);
    ASSERT_EQ(install(), "");
    const std::string again = readFile(thunar);
    EXPECT_EQ(again.find("reveal-encrypted</unique-id>"),
              again.rfind("reveal-encrypted</unique-id>"));
}

TEST_F(FileManagerActionsTest, TheMachinesActionsGoIntoTheUsersFirstList)
{
    write(_temp / "xdg/Thunar/uca.xml", foreignActions);
    ASSERT_EQ(install(), "");
    EXPECT_NE(readFile(thunar).find("Open Terminal Here"), std::string::npos);
    EXPECT_EQ(readFile(_temp / "xdg/Thunar/uca.xml"), foreignActions);
}

TEST_F(FileManagerActionsTest, ADamagedListIsLeftAloneAndReportedAndTheOthersAreInstalled)
{
    for (const std::string damaged :
         {"<actions><action>", "<html/>", "no XML",
          "<!DOCTYPE actions [<!ENTITY a \"b\">]><actions>&a;</actions>"}) {
        write(thunar, damaged);
        EXPECT_THAT(install(), testing::HasSubstr("uca.xml\" isn't a list of actions"));
        EXPECT_FALSE(areInstalled());
        EXPECT_TRUE(fs::exists(nemo));
        EXPECT_THAT(remove(), testing::HasSubstr("uca.xml"));
        EXPECT_FALSE(fs::exists(nemo));
        EXPECT_EQ(readFile(thunar), damaged);
    }
}

TEST_F(FileManagerActionsTest, AListThatIsALinkStaysOne)
{
    write(_temp / "dotfiles/uca.xml", foreignActions);
    fs::create_directories(fs::path(thunar).parent_path());
    fs::create_symlink(_temp / "dotfiles/uca.xml", thunar);
    ASSERT_EQ(install(), "");
    EXPECT_TRUE(fs::is_symlink(thunar));
    EXPECT_NE(readFile(_temp / "dotfiles/uca.xml").find("--reveal-encrypted"), std::string::npos);
}

TEST_F(FileManagerActionsTest, FilesOfOthersAreLeftAndReported)
{
    for (const std::string &path : {script(), nemo, dolphin}) {
        write(path, "somebody's");
        EXPECT_THAT(install(), testing::HasSubstr("\"" + path + "\" isn't Nimbrel's"));
        EXPECT_FALSE(areInstalled());
        EXPECT_EQ(remove(), "");
        EXPECT_EQ(readFile(path), "somebody's");
        fs::remove(path);
    }
}

TEST_F(FileManagerActionsTest, WhatIsNoFileIsLeftAndReported)
{
    fs::create_directories(nemo);
    EXPECT_THAT(install(), testing::HasSubstr("can't be read"));
    EXPECT_EQ(remove(), "");
    EXPECT_TRUE(fs::is_directory(nemo));
}

TEST_F(FileManagerActionsTest, AScriptWithAnEarlierTitleIsFoundByItsMark)
{
    ASSERT_EQ(install(), "");
    write(script("mine"), "#!/bin/sh\necho mine\n");
    ASSERT_EQ(install(program, QStringLiteral("Verschl\u00fcsselte Datei zeigen")), "");
    EXPECT_FALSE(fs::exists(script()));
    EXPECT_TRUE(fs::exists(script("Verschl\xC3\xBCsselte Datei zeigen")));
    EXPECT_TRUE(areInstalled());
    ASSERT_EQ(remove(), "");
    EXPECT_FALSE(fs::exists(script("Verschl\xC3\xBCsselte Datei zeigen")));
    EXPECT_TRUE(fs::exists(script("mine")));
}

TEST_F(FileManagerActionsTest, ATitleIsAlwaysANameOfAFileInTheFolder)
{
    ASSERT_EQ(install(program, QStringLiteral("../a/b\nc")), "");
    EXPECT_TRUE(fs::exists(script("-a-b c")));
    ASSERT_EQ(install(program, QString()), "");
    EXPECT_TRUE(fs::exists(script("Nimbrel")));
    EXPECT_TRUE(areInstalled());
}

TEST_F(FileManagerActionsTest, AProgramThatNoEntryCanNameIsRefused)
{
    EXPECT_NE(install(QStringLiteral("/opt/a\nExec=b")), "");
    EXPECT_NE(install(QStringLiteral("nimbrel")), "");
    EXPECT_FALSE(fs::exists(nemo));
}

TEST_F(FileManagerActionsTest, AFolderThatCanNotBeMadeIsReported)
{
    write(_desktop.data() + "/nemo", "a file");
    EXPECT_THAT(install(), testing::HasSubstr("nemo"));
    EXPECT_TRUE(fs::exists(dolphin));
}

} // namespace
} // namespace nimbrel::test
