#pragma once

#include <QString>

namespace nimbrel {

struct UpdateFailure;

// What a person hears who asked for updates, where no offer comes of it. Modal.
void tellUpToDate(const QString &version);
void tellFailure(const UpdateFailure &failure, const QString &host);

} // namespace nimbrel
