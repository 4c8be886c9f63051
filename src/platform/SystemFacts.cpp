#include "platform/SystemFacts.h"

#include "config/BoundedFile.h"
#include "platform/Account.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>

#include <sys/utsname.h>
#include <unistd.h>

namespace nimbrel::systemFacts {

QString version()
{
    struct utsname names = {};
    return versionOfRelease(::uname(&names) == 0 ? QString::fromUtf8(names.release) : QString());
}

QString versionOfRelease(const QString &release)
{
    static const QRegularExpression numbers(QStringLiteral(R"(^(\d+)(?:\.(\d+))?(?:\.(\d+))?)"));
    const QRegularExpressionMatch found = numbers.match(release);
    const auto number = [&](int index) { return found.captured(index).toInt(); };
    return QStringLiteral("%1.%2.%3").arg(number(1)).arg(number(2)).arg(number(3));
}

QString serialNumber()
{
    return serialNumberIn(QStringLiteral("/etc/machine-id"));
}

QString serialNumberIn(const QString &path)
{
    constexpr std::size_t maximumSize = 256;
    const auto read = readBoundedFile(QFile::encodeName(path).toStdString(), maximumSize);
    const auto *text = std::get_if<std::string>(&read);
    if (text == nullptr)
        return {};
    // While a system starts for the first time, the file says "uninitialized".
    static const QRegularExpression form(QStringLiteral("^[0-9a-fA-F]{32}$"));
    const QString number = QString::fromStdString(*text).trimmed();
    return form.match(number).hasMatch() ? number : QString();
}

QString userName()
{
    const auto account = ownAccount();
    return account ? account->name : QString::number(::geteuid());
}

QString programPath()
{
    if (QCoreApplication::instance() != nullptr)
        return QCoreApplication::applicationFilePath();
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

} // namespace nimbrel::systemFacts
