#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace nimbrel {

struct CheckedSettings
{
    QByteArray text; // what QSettings may read: sections and values, each on a line of its own
    bool isDamaged = false; // more than comments was left out
};

// The lines of an INI file that are safe to give to QSettings.
//
// QSettings builds whatever a value says ("@Variant(", "@DateTime(" and their kin), and one that is
// nested deeply enough ends the process. It also finds such a value behind quotes, escapes, list
// commas and line breaks. So only what QSettings itself writes for texts and byte arrays passes,
// and what people write by hand: comments (";" or "#"), blanks, quotes. Lists and values of several
// lines, which QSettings reads, don't.
[[nodiscard]] CheckedSettings checkedSettings(QByteArrayView text);

} // namespace nimbrel
