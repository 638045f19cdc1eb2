// Owners of what GLib's libraries hand out, timers, and answers that outlive nobody. All of it
// belongs to the main loop's thread.
#pragma once

#include <chrono>
#include <functional>
#include <gio/gio.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace service {

template <typename T>
struct Unref
{
    void operator()(T *object) const { g_object_unref(object); }
};
// A reference to a GObject.
template <typename T>
using Object = std::unique_ptr<T, Unref<T>>;

// Another reference to what somebody else owns; null for null.
template <typename T>
Object<T> share(T *object)
{
    if (object != nullptr)
        g_object_ref(object);
    return Object<T>(object);
}

struct VariantDeleter
{
    void operator()(GVariant *variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, VariantDeleter>;

// What a function of GLib's left in its last argument: wanted as `GError *`, kept by this.
class Error
{
public:
    GError **operator&() { return &m_error; }
    Error() = default;
    ~Error() { g_clear_error(&m_error); }
    Error(const Error &) = delete;
    Error &operator=(const Error &) = delete;

    explicit operator bool() const { return m_error != nullptr; }
    bool is(GQuark domain, int code) const { return g_error_matches(m_error, domain, code); }
    // "" without an error.
    std::string text() const { return m_error == nullptr ? "" : m_error->message; }

private:
    GError *m_error = nullptr;
};

// The text, "" for null.
inline std::string toString(const char *text)
{
    return text == nullptr ? std::string() : std::string(text);
}

// Calls a function once after a time; anew from the beginning when it is started again.
class Timer
{
public:
    Timer() = default;
    ~Timer() { stop(); }
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;

    void start(std::chrono::milliseconds time, std::function<void()> expired);
    void stop();
    bool isRunning() const { return m_source != 0; }

private:
    static gboolean onExpired(gpointer self);

    guint m_source = 0;
    std::function<void()> m_expired;
};

// Handlers of signals, disconnected with this.
class Handlers
{
public:
    Handlers() = default;
    ~Handlers() { clear(); }
    Handlers(const Handlers &) = delete;
    Handlers &operator=(const Handlers &) = delete;

    // The handler gets neither the object nor the signal's arguments. `signal` is one without a
    // result, "notify::state" or "device-added".
    void add(gpointer object, const char *signal, std::function<void()> handler);
    void clear();

private:
    std::vector<std::pair<Object<GObject>, gulong>> m_handlers;
};

// Asynchronous calls of one object: what has not been answered when this ends is cancelled, and the
// answer goes nowhere.
//
//     nm_device_disconnect_async(device, m_calls.cancellable(), Calls::answer,
//                                m_calls.expect([this](GObject *source, GAsyncResult *result) { ...
//                                }));
class Calls
{
public:
    using Answer = std::function<void(GObject *source, GAsyncResult *result)>;

    Calls() : m_cancellable(g_cancellable_new()), m_alive(std::make_shared<char>()) {}
    ~Calls() { g_cancellable_cancel(m_cancellable.get()); }
    Calls(const Calls &) = delete;
    Calls &operator=(const Calls &) = delete;

    GCancellable *cancellable() const { return m_cancellable.get(); }
    // The data that belongs to `answer` below, freed by it.
    gpointer expect(Answer taken) const;
    static void answer(GObject *source, GAsyncResult *result, gpointer data);
    // Does the work, which may block, in a thread of its own, and calls `then` in the main loop.
    void inThread(std::function<void()> work, std::function<void()> then) const;

private:
    Object<GCancellable> m_cancellable;
    std::shared_ptr<char> m_alive;
};

} // namespace service
