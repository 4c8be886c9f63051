#include "app/Util.h"

#include <QAssociativeIterable>
#include <QFile>
#include <QSequentialIterable>

#include <sys/stat.h>

namespace nimbrel {

namespace {

constexpr QLatin1Char slash('/');

// The character is signed: from 0x80 on it equals no code unit.
bool isCharacter(QChar unit, char character)
{
    return int{unit.unicode()} == int{static_cast<signed char>(character)};
}

// Follows links, so that a dangling one doesn't exist.
bool status(const QString &path, struct stat &found)
{
    return ::stat(QFile::encodeName(path).constData(), &found) == 0;
}

} // namespace

int Util::getFirstIndexOf(QChar character, const QString &string)
{
    return static_cast<int>(string.indexOf(character));
}

int Util::getLastIndexOf(QChar character, const QString &string)
{
    return static_cast<int>(string.lastIndexOf(character));
}

int Util::getIndecesOf(char character, const QString &string)
{
    int count = 0;
    for (const QChar unit : string)
        count += isCharacter(unit, character) ? 1 : 0;
    return count;
}

int Util::getSpecIndexOf(char character, int n, const QString &string)
{
    int count = 0;
    for (qsizetype index = 0; index < string.size(); ++index)
        if (isCharacter(string[index], character) && ++count == n)
            return static_cast<int>(index);
    return -1;
}

QString Util::getLastPathElement(const QString &path)
{
    const int index = getLastIndexOf(slash, path);
    return index < 0 ? QString() : path.sliced(index + 1);
}

QString Util::getParentPath(const QString &path)
{
    const int index = getLastIndexOf(slash, path);
    return index <= 0 ? QString(slash) : path.first(index);
}

int Util::countPathLevel(const QString &path)
{
    int level = 0;
    for (QString rest = path; !rest.isEmpty() && rest != slash; rest = getParentPath(rest))
        ++level;
    return level;
}

bool Util::isEmpty(const QVariant &object)
{
    if (object.isNull())
        return true;
    if (object.typeId() == QMetaType::QString)
        return object.toString().isEmpty();
    if (object.typeId() == QMetaType::QByteArray)
        return object.toByteArray().isEmpty();
    if (object.canConvert<QAssociativeIterable>())
        return object.value<QAssociativeIterable>().size() == 0;
    if (object.canConvert<QSequentialIterable>())
        return object.value<QSequentialIterable>().size() == 0;
    return false;
}

void Util::appendByte(char byte, QByteArray &to)
{
    to.append(byte);
}

bool Util::fileExists(const QString &path)
{
    struct stat found = {};
    return status(path, found) && !S_ISDIR(found.st_mode);
}

bool Util::directoryExists(const QString &path)
{
    struct stat found = {};
    return status(path, found) && S_ISDIR(found.st_mode);
}

bool Util::exists(const QString &path)
{
    return fileExists(path) || directoryExists(path);
}

} // namespace nimbrel
