#pragma once

#include "crypto/CHandle.h"

#include <gio/gio.h>

#include <chrono>
#include <functional>

namespace nimbrel {

using GlibError = CHandle<GError, g_error_free>;
template <class T>
using GlibObject = CHandle<T, g_object_unref>;

// A row of asynchronous GIO operations made into one call that waits, and that ends in time: at its
// limit what runs is cancelled, and what doesn't heed that is left behind. The operations run in a
// main context of their own, so nothing of the program runs meanwhile. One at a time on a thread.
class GlibCall final
{
public:
    explicit GlibCall(std::chrono::milliseconds limit);
    ~GlibCall();
    GlibCall(const GlibCall &) = delete;
    GlibCall &operator=(const GlibCall &) = delete;

    [[nodiscard]] GCancellable *cancellable() const noexcept { return _cancellable.get(); }

    using Start = std::function<void(GAsyncReadyCallback, gpointer)>;
    // Starts an operation; its result, or null when it was left behind.
    [[nodiscard]] GlibObject<GAsyncResult> await(const Start &start);
    // For what ends all the rest: lets one more operation run a moment, whatever the limit says.
    // What was left behind and fails by it comes to its end meanwhile. Goes on until `hasEnded`,
    // which what runs here sets: a source that comes later would keep this call's context for good.
    void awaitEnd(const Start &start, const bool &hasEnded);

private:
    static gboolean cancel(gpointer call);
    static gboolean giveUp(gpointer call);
    void addTimer(std::chrono::milliseconds after, GSourceFunc function);

    CHandle<GMainContext, g_main_context_unref> _context;
    GlibObject<GCancellable> _cancellable;
    bool _hasGivenUp = false;
};

} // namespace nimbrel
