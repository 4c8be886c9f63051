// Window resources: named definitions of views, made in code.
#pragma once

#include <QString>

#include <functional>
#include <memory>

class QWidget;

namespace nimbrel {

// Makes a new view with all its controls, each under its objectName. The caller owns it.
using Nib = std::function<std::unique_ptr<QWidget>()>;

// Main thread only.
namespace nibs {

// The last definition of a name counts.
void add(const QString &name, const Nib &nib);
// loadNibNamed:owner:  Null when there is no such resource.
[[nodiscard]] std::unique_ptr<QWidget> load(const QString &name);

} // namespace nibs

} // namespace nimbrel
