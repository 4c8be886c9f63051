#include "platform/GlibCall.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace nimbrel {

namespace {

// What an operation gets to tell its end, when it was cancelled or is the last one.
constexpr std::chrono::milliseconds grace{500};

// Shared with the operation, which may answer after the call has left it behind.
struct Answer
{
    GlibObject<GAsyncResult> result;
};

void take(GObject * /*source*/, GAsyncResult *result, gpointer data)
{
    const std::unique_ptr<std::shared_ptr<Answer>> answer(
        static_cast<std::shared_ptr<Answer> *>(data));
    g_object_ref(result);
    (*answer)->result.reset(result);
}

} // namespace

GlibCall::GlibCall(std::chrono::milliseconds limit)
    : _context(g_main_context_new()), _cancellable(g_cancellable_new())
{
    g_main_context_push_thread_default(_context.get());
    addTimer(limit, cancel);
    addTimer(limit + grace, giveUp);
}

GlibCall::~GlibCall()
{
    // The timers know this object.
    while (GSource *timer = g_main_context_find_source_by_user_data(_context.get(), this))
        g_source_destroy(timer);
    g_main_context_pop_thread_default(_context.get());
}

GlibObject<GAsyncResult> GlibCall::await(const Start &start)
{
    if (_hasGivenUp)
        return nullptr;
    const auto answer = std::make_shared<Answer>();
    start(take, std::make_unique<std::shared_ptr<Answer>>(answer).release());
    while (!answer->result && !_hasGivenUp)
        g_main_context_iteration(_context.get(), TRUE);
    return std::move(answer->result);
}

void GlibCall::awaitEnd(const Start &start, const bool &hasEnded)
{
    _hasGivenUp = false;
    addTimer(grace, giveUp);
    (void)await(start);
    while (!hasEnded && !_hasGivenUp)
        g_main_context_iteration(_context.get(), TRUE);
    while (g_main_context_iteration(_context.get(), FALSE) != FALSE)
        continue;
}

gboolean GlibCall::cancel(gpointer call)
{
    g_cancellable_cancel(static_cast<GlibCall *>(call)->cancellable());
    return G_SOURCE_REMOVE;
}

gboolean GlibCall::giveUp(gpointer call)
{
    static_cast<GlibCall *>(call)->_hasGivenUp = true;
    return G_SOURCE_REMOVE;
}

void GlibCall::addTimer(std::chrono::milliseconds after, GSourceFunc function)
{
    const auto milliseconds = std::clamp<std::int64_t>(after.count(), 0, G_MAXINT);
    GSource *timer = g_timeout_source_new(static_cast<guint>(milliseconds));
    g_source_set_callback(timer, function, this, nullptr);
    g_source_attach(timer, _context.get());
    g_source_unref(timer);
}

} // namespace nimbrel
