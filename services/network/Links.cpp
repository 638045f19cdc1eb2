#include "services/network/Links.h"

#include "platform/posix/FileDescriptor.h"
#include "services/common/Journal.h"
#include "services/network/Profile.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace network {
namespace {

bool isDone(const Error &error, const std::string &what)
{
    if (error)
        service::warn(what + ": " + error.text());
    return !error;
}

bool verifies(NMConnection *profile)
{
    Error error;
    return nm_connection_normalize(profile, nullptr, nullptr, &error) != FALSE;
}

} // namespace

bool Links::isProfileOf(const Device &device, NMRemoteConnection *profile) const
{
    return toString(nm_connection_get_id(NM_CONNECTION(profile))) == profileName(device.key());
}

// The newest one: a Wi-Fi network that has just been joined stands beside the former for a moment.
NMRemoteConnection *Links::profileOf(const Device &device) const
{
    const GPtrArray *all = nm_client_get_connections(client());
    NMRemoteConnection *found = nullptr;
    guint64 newest = 0;
    for (guint index = 0; index < all->len; ++index) {
        auto *profile = static_cast<NMRemoteConnection *>(g_ptr_array_index(all, index));
        if (!isProfileOf(device, profile))
            continue;
        const guint64 time = nm_setting_connection_get_timestamp(
            nm_connection_get_setting_connection(NM_CONNECTION(profile)));
        if (found == nullptr || time > newest) {
            found = profile;
            newest = time;
        }
    }
    return found;
}

NMRemoteConnection *Links::triedOn(const Device &device) const
{
    NMActiveConnection *active = device.connection();
    NMRemoteConnection *profile =
        active == nullptr ? nullptr : nm_active_connection_get_connection(active);
    const bool isTrial =
        profile != nullptr &&
        toString(nm_connection_get_id(NM_CONNECTION(profile))) == trialName(device.name());
    return isTrial ? profile : nullptr;
}

NMRemoteConnection *Links::inUse(const Device &device) const
{
    NMRemoteConnection *tried = triedOn(device);
    return tried == nullptr ? profileOf(device) : tried;
}

void Links::queue(const Then &then, Queue::Work work)
{
    if (!m_changes.add(std::move(work)))
        then(false);
}

void Links::change(const Device &device, Edit edit, const Then &then)
{
    queue(then, [this, &device, edit = std::move(edit), then](const Queue::Next &next) {
        changeNow(device, edit, [this, &device, then, next](bool done) {
            then(done);
            if (done)
                putInForce(device, next);
            else
                next();
        });
    });
}

void Links::changeNow(const Device &device, const Edit &edit, const Then &then)
{
    if (NMRemoteConnection *kept = profileOf(device))
        return this->edit(kept, edit, then);
    const Object<NMConnection> made = newProfile(device.kind(), device.name());
    if (edit(made.get()) && verifies(made.get()))
        add(made.get(), then);
    else
        then(false);
}

void Links::rewrite(const Device &device, Edit edit, const Then &then)
{
    rewriteFound([this, &device] { return profileOf(device); }, std::move(edit), then);
}

void Links::keep(NMRemoteConnection *profile, Edit edit, const Then &then)
{
    rewriteFound([held = std::make_shared<Object<NMRemoteConnection>>(
                      share(profile))] { return held->get(); },
                 std::move(edit), then);
}

void Links::rewriteFound(Find find, Edit edit, const Then &then)
{
    queue(then,
          [this, find = std::move(find), edit = std::move(edit), then](const Queue::Next &next) {
              const auto ended = [then, next](bool done) {
                  then(done);
                  next();
              };
              if (NMRemoteConnection *profile = find())
                  this->edit(profile, edit, ended);
              else
                  ended(false);
          });
}

void Links::edit(NMRemoteConnection *profile, const Edit &edit, const Then &then)
{
    const Object<NMConnection> changed(nm_simple_connection_new_clone(NM_CONNECTION(profile)));
    if (!edit(changed.get()) || !verifies(changed.get()))
        return then(false);
    nm_remote_connection_update2(
        profile, nm_connection_to_dbus(changed.get(), NM_CONNECTION_SERIALIZE_ALL),
        NM_SETTINGS_UPDATE2_FLAG_TO_DISK, nullptr, m_calls.cancellable(), Calls::answer,
        m_calls.expect([this, then](GObject *source, GAsyncResult *result) {
            Error error;
            const Variant answer(
                nm_remote_connection_update2_finish(NM_REMOTE_CONNECTION(source), result, &error));
            if (!isDone(error, "a profile is not changed"))
                return then(false);
            readAgain(NM_REMOTE_CONNECTION(source), [this, then] { sync([then] { then(true); }); });
        }));
}

// libnm reads a changed profile again when NetworkManager tells that it has changed, which is
// before its answer. What is asked from here on is answered after that: the next change starts from
// this one.
void Links::readAgain(NMRemoteConnection *profile, std::function<void()> then)
{
    nm_client_dbus_call(
        client(), nm_object_get_path(NM_OBJECT(profile)), NM_DBUS_INTERFACE_SETTINGS_CONNECTION,
        "GetSettings", nullptr, nullptr, -1, m_calls.cancellable(), Calls::answer,
        m_calls.expect([then = std::move(then)](GObject *source, GAsyncResult *result) {
            const Variant settings(nm_client_dbus_call_finish(NM_CLIENT(source), result, nullptr));
            then();
        }));
}

void Links::add(NMConnection *profile, Then then)
{
    nm_client_add_connection2(
        client(), nm_connection_to_dbus(profile, NM_CONNECTION_SERIALIZE_ALL),
        NM_SETTINGS_ADD_CONNECTION2_FLAG_TO_DISK, nullptr, TRUE, m_calls.cancellable(),
        Calls::answer,
        m_calls.expect([this, then = std::move(then)](GObject *source, GAsyncResult *result) {
            Error error;
            const Object<NMRemoteConnection> added(
                nm_client_add_connection2_finish(NM_CLIENT(source), result, nullptr, &error));
            if (isDone(error, "a profile is not kept"))
                sync([then] { then(true); });
            else
                then(false);
        }));
}

void Links::letAutomatic(const Device &device)
{
    if (!device.isPresent())
        return;
    const char *path = nm_object_get_path(NM_OBJECT(device.get()));
    nm_client_dbus_set_property(
        client(), path, NM_DBUS_INTERFACE_DEVICE, "Autoconnect", g_variant_new_boolean(TRUE), -1,
        m_calls.cancellable(), Calls::answer,
        m_calls.expect([](GObject *source, GAsyncResult *result) {
            Error error;
            nm_client_dbus_set_property_finish(NM_CLIENT(source), result, &error);
            isDone(error, "a device does not come up by itself");
        }));
}

// NetworkManager 1.42 syncs neither a new profile nor the folder that it renames it in.
void Links::sync(std::function<void()> then)
{
    m_calls.inThread(
        [folder = m_folder] {
            const os::FileDescriptor file(::open(folder.c_str(), O_RDONLY | O_CLOEXEC));
            if (!file.isOpen() || ::syncfs(file.get()) != 0)
                service::warn("a profile may be lost by a power failure: " +
                              service::reason(errno));
        },
        std::move(then));
}

// While a network is tried on it, the device's profile is that of the network before.
void Links::putInForce(const Device &device, const Queue::Next &next)
{
    const NMDeviceState state = device.state();
    if (!device.isOn() || state < NM_DEVICE_STATE_DISCONNECTED || triedOn(device))
        return next();
    // NetworkManager 1.42 takes the address away from a call that is reapplied: it is dialled anew.
    // And a device that is still looking whether another host has its address never comes to an end
    // of that.
    if (device.kind() == Kind::Modem || state != NM_DEVICE_STATE_ACTIVATED)
        return activate(device, [next](bool) { next(); });
    reapply(device, nullptr, [this, &device, next](bool done) {
        if (done)
            return next();
        activate(device, [next](bool) { next(); });
    });
}

// What is kept, if no profile is given.
void Links::reapply(const Device &device, NMConnection *profile, const Then &then)
{
    nm_device_reapply_async(device.get(), profile, 0, 0, m_calls.cancellable(), Calls::answer,
                            m_calls.expect([then](GObject *source, GAsyncResult *result) {
                                Error error;
                                then(nm_device_reapply_finish(NM_DEVICE(source), result, &error) !=
                                     FALSE);
                            }));
}

// NetworkManager does nothing for a profile that has not changed: the metric goes there and back.
void Links::renewRoutes(const Device &device)
{
    queue([](bool) {},
          [this, &device](const Queue::Next &next) {
              NMRemoteConnection *profile = inUse(device);
              if (profile == nullptr || !device.isActive())
                  return next();
              const Then ended = [next](bool) { next(); };
              if (device.kind() == Kind::Modem)
                  return activate(device, ended);
              const Object<NMConnection> changed(
                  nm_simple_connection_new_clone(NM_CONNECTION(profile)));
              setMetric(changed.get(), metricOf(changed.get()) + 1);
              reapply(device, changed.get(), [this, &device, ended](bool) {
                  if (device.isPresent())
                      reapply(device, nullptr, ended);
                  else
                      ended(false);
              });
          });
}

void Links::activate(const Device &device, Then then)
{
    NMRemoteConnection *profile = profileOf(device);
    if (profile == nullptr || !device.isPresent())
        return then(false);
    nm_client_activate_connection_async(
        client(), NM_CONNECTION(profile), device.get(), nullptr, m_calls.cancellable(),
        Calls::answer,
        m_calls.expect([then = std::move(then)](GObject *source, GAsyncResult *result) {
            Error error;
            const Object<NMActiveConnection> active(
                nm_client_activate_connection_finish(NM_CLIENT(source), result, &error));
            then(isDone(error, "a device is not brought up"));
        }));
}

void Links::disconnect(const Device &device, Then then)
{
    if (device.state() <= NM_DEVICE_STATE_DISCONNECTED)
        return then(true);
    nm_device_disconnect_async(
        device.get(), m_calls.cancellable(), Calls::answer,
        m_calls.expect([then = std::move(then)](GObject *source, GAsyncResult *result) {
            Error error;
            nm_device_disconnect_finish(NM_DEVICE(source), result, &error);
            then(isDone(error, "a device is not disconnected"));
        }));
}

void Links::deactivate(NMActiveConnection *active)
{
    if (nm_active_connection_get_state(active) > NM_ACTIVE_CONNECTION_STATE_ACTIVATED)
        return;
    nm_client_deactivate_connection_async(client(), active, m_calls.cancellable(), Calls::answer,
                                          m_calls.expect([](GObject *source, GAsyncResult *result) {
                                              Error error;
                                              nm_client_deactivate_connection_finish(
                                                  NM_CLIENT(source), result, &error);
                                          }));
}

void Links::removeOthers(const Device &device, NMRemoteConnection *kept)
{
    const GPtrArray *all = nm_client_get_connections(client());
    for (guint index = 0; index < all->len; ++index) {
        auto *profile = static_cast<NMRemoteConnection *>(g_ptr_array_index(all, index));
        if (profile == kept || !isProfileOf(device, profile))
            continue;
        nm_remote_connection_delete_async(profile, m_calls.cancellable(), Calls::answer,
                                          m_calls.expect([](GObject *source, GAsyncResult *result) {
                                              Error error;
                                              nm_remote_connection_delete_finish(
                                                  NM_REMOTE_CONNECTION(source), result, &error);
                                              isDone(error, "a former profile is not removed");
                                          }));
    }
}

} // namespace network
