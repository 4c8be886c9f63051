#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <functional>

namespace nimbrel {

// One of the parameters of a request for the update feed.
struct FeedParameter
{
    QString key;
    QVariant value; // a text, a number or a truth

    // As the request carries it: truths are "1" and "0".
    [[nodiscard]] QString text() const
    {
        const bool isTruth = value.typeId() == QMetaType::Bool;
        return isTruth ? QString::number(value.toInt()) : value.toString();
    }
};

using FeedParameters = QList<FeedParameter>;
using FeedParametersHandler = std::function<void(const FeedParameters &parameters)>;

} // namespace nimbrel
