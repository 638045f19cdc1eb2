#include "services/common/GLib.h"

#include <mutex>

namespace service {
namespace {

struct Expected
{
    std::weak_ptr<char> alive;
    Calls::Answer taken;
};

void onSignal(gpointer handler)
{
    (*static_cast<std::function<void()> *>(handler))();
}

// Work goes to its thread and back under this lock: how GLib hands it over is made of its own
// locks, which a thread sanitizer cannot see.
std::mutex s_handOver;

void work(GTask *task, gpointer, gpointer data, GCancellable *)
{
    {
        std::unique_lock lock(s_handOver);
        const std::function<void()> blocking =
            std::move(*static_cast<std::function<void()> *>(data));
        lock.unlock();
        blocking();
    }
    std::unique_lock(s_handOver).unlock(); // what the work has written
    g_task_return_boolean(task, TRUE);
}

void freeWork(gpointer data)
{
    const std::lock_guard lock(s_handOver);
    delete static_cast<std::function<void()> *>(data);
}

void freeHandler(gpointer handler, GClosure *)
{
    delete static_cast<std::function<void()> *>(handler);
}

} // namespace

void Timer::start(std::chrono::milliseconds time, std::function<void()> expired)
{
    stop();
    m_expired = std::move(expired);
    m_source = g_timeout_add(static_cast<guint>(time.count()), onExpired, this);
}

void Timer::stop()
{
    if (m_source != 0)
        g_source_remove(std::exchange(m_source, 0));
}

gboolean Timer::onExpired(gpointer self)
{
    auto &timer = *static_cast<Timer *>(self);
    timer.m_source = 0;
    const auto expired = std::move(timer.m_expired);
    expired();
    return G_SOURCE_REMOVE;
}

// Swapped, the handler is the first argument and the others need no names.
void Handlers::add(gpointer object, const char *signal, std::function<void()> handler)
{
    const gulong id = g_signal_connect_data(object, signal, G_CALLBACK(onSignal),
                                            new std::function<void()>(std::move(handler)),
                                            freeHandler, G_CONNECT_SWAPPED);
    m_handlers.emplace_back(share(G_OBJECT(object)), id);
}

void Handlers::clear()
{
    for (const auto &[object, id] : m_handlers)
        g_signal_handler_disconnect(object.get(), id);
    m_handlers.clear();
}

gpointer Calls::expect(Answer taken) const
{
    return new Expected{m_alive, std::move(taken)};
}

void Calls::answer(GObject *source, GAsyncResult *result, gpointer data)
{
    const std::unique_ptr<Expected> expected(static_cast<Expected *>(data));
    if (!expected->alive.expired())
        expected->taken(source, result);
}

void Calls::inThread(std::function<void()> work, std::function<void()> then) const
{
    const Object<GTask> task(g_task_new(nullptr, nullptr, answer,
                                        expect([then = std::move(then)](GObject *, GAsyncResult *) {
                                            std::unique_lock(s_handOver).unlock();
                                            then();
                                        })));
    std::unique_lock lock(s_handOver);
    g_task_set_task_data(task.get(), new std::function<void()>(std::move(work)), freeWork);
    lock.unlock();
    g_task_run_in_thread(task.get(), service::work);
}

} // namespace service
