#include "assistant/NibLoading.h"

#include <QHash>
#include <QWidget>

namespace nimbrel::nibs {

namespace {

QHash<QString, Nib> &definitions()
{
    static QHash<QString, Nib> all;
    return all;
}

} // namespace

void add(const QString &name, const Nib &nib)
{
    definitions().insert(name, nib);
}

std::unique_ptr<QWidget> load(const QString &name)
{
    const Nib nib = definitions().value(name);
    return nib ? nib() : nullptr;
}

} // namespace nimbrel::nibs
