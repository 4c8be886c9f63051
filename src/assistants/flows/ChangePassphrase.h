#pragma once

#include <memory>

namespace nimbrel {

class NBNimbrelVolume;

// changePassphrase:  A modal assistant that changes a mounted volume's password.
void showChangePassphrase(const std::shared_ptr<NBNimbrelVolume> &volume);

} // namespace nimbrel
