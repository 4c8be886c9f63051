#include "platform/PropertyListShape.h"

#include "platform/ShapeReader.h"

#include <string_view>

namespace nimbrel {

std::optional<QString> propertyListTrouble(const QByteArray &data)
{
    ShapeReader reader(
        bytesOf(std::string_view(data.constData(), static_cast<std::size_t>(data.size()))));
    if (reader.isSound())
        return std::nullopt;
    return reader.trouble();
}

} // namespace nimbrel
