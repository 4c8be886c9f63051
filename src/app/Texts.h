#pragma once

#include <QCoreApplication>

namespace nimbrel {

// Looks a text up in the application's string table; the English text is the key.
class texts final
{
    Q_DECLARE_TR_FUNCTIONS(nimbrel)
};

} // namespace nimbrel
