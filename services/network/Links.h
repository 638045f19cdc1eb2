// What NetworkManager is asked to do, and the profiles that it keeps for netServer.
#pragma once

#include "services/network/Device.h"
#include "services/network/Queue.h"

#include <NetworkManager.h>
#include <string>

namespace network {

class Links
{
public:
    // Whether it was done; one that was not is told to the journal.
    using Then = std::function<void(bool done)>;
    using Edit = std::function<bool(NMConnection *profile)>;

    // `folder` is on the file system that keeps the profiles.
    Links(NMClient *client, std::string folder)
        : m_client(share(client)), m_folder(std::move(folder))
    {
    }

    NMClient *client() const { return m_client.get(); }

    // The profile that is kept for a device; null if there is none.
    NMRemoteConnection *profileOf(const Device &device) const;

    // The profile that is tried on a device with trialName(); null if none is.
    NMRemoteConnection *triedOn(const Device &device) const;
    // That one, or else profileOf().
    NMRemoteConnection *inUse(const Device &device) const;

    // Changes the device's profile, or makes one that Wi-Fi cannot have without a network, and has
    // it kept; `then` is called as soon as it is. After that it is put in force, where the device
    // is on. Changes follow one another. Not done if `edit` returns false, if there is too much to
    // do, or if NetworkManager refuses.
    void change(const Device &device, Edit edit, const Then &then);
    // Changes the device's profile and has it kept, no more; not done where there is none.
    void rewrite(const Device &device, Edit edit, const Then &then);
    // The same of any profile.
    void keep(NMRemoteConnection *profile, Edit edit, const Then &then);

    // Lets NetworkManager bring the device up by itself again: an operator's word had ended that.
    void letAutomatic(const Device &device);
    // Brings the device's profile up or lets go of it.
    void activate(const Device &device, Then then);
    void disconnect(const Device &device, Then then);
    // Has NetworkManager reckon the routes of an active device anew; a modem is dialled anew.
    void renewRoutes(const Device &device);
    // Ends what is up or is coming up.
    void deactivate(NMActiveConnection *active);

    // Removes kept profiles of the device but the one.
    void removeOthers(const Device &device, NMRemoteConnection *kept);

private:
    using Find = std::function<NMRemoteConnection *()>;

    void queue(const Then &then, Queue::Work work);
    void rewriteFound(Find find, Edit edit, const Then &then);
    void changeNow(const Device &device, const Edit &edit, const Then &then);
    void edit(NMRemoteConnection *profile, const Edit &edit, const Then &then);
    void add(NMConnection *profile, Then then);
    void readAgain(NMRemoteConnection *profile, std::function<void()> then);
    void sync(std::function<void()> then);
    void reapply(const Device &device, NMConnection *profile, const Then &then);
    void putInForce(const Device &device, const Queue::Next &next);
    bool isProfileOf(const Device &device, NMRemoteConnection *profile) const;

    Object<NMClient> m_client;
    std::string m_folder;
    Queue m_changes{32};
    Calls m_calls;
};

} // namespace network
