// Paths and texts between the core's bytes and Qt's strings; this folder alone needs both.
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace nimbrel {

// UTF-8. A null string is empty.
[[nodiscard]] inline std::string coreText(const QString &text)
{
    return text.toStdString();
}

[[nodiscard]] inline QString qtText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// `name` behind `folder`, with one separator between them.
[[nodiscard]] inline QString pathIn(const QString &folder, const QString &name)
{
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

} // namespace nimbrel
