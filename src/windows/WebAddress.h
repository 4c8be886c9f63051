#pragma once

class QUrl;

namespace nimbrel {

// Whether a browser may be started with it: http or https, with a host.
[[nodiscard]] bool isWebAddress(const QUrl &url);

} // namespace nimbrel
