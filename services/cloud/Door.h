// The service on the bus: org.sysset.Cloud1 at /org/sysset/Cloud1.
#pragma once

#include "services/cloud/Configuration.h"
#include "services/common/GLib.h"

#include <CloudInterface.h>
#include <cstdint>
#include <string>

namespace cloud {

class Door
{
public:
    // Who does what is asked.
    class Host
    {
    public:
        virtual ~Host() = default;
        virtual void start(const Configuration &configuration) = 0; // a sound one
        virtual int status() const = 0;
        virtual const std::string &reason() const = 0;
        virtual bool answer(std::uint64_t number, const std::string &message) = 0;
    };

    // Shows the object on the bus; throws std::runtime_error if that cannot be.
    Door(GDBusConnection *bus, Host &host);
    ~Door();
    Door(const Door &) = delete;
    Door &operator=(const Door &) = delete;

    void tellStatus();
    void tellRequest(std::uint64_t number, const std::string &topic, const std::string &message);

private:
    static gboolean onStart(PanelCloud1 *, GDBusMethodInvocation *call, const char *server,
                            guint16 port, const char *certificateServer, guint16 certificatePort,
                            const char *timeServer, const char *device, const char *salt,
                            const char *requestTopic, const char *responseTopic, GVariant *trust,
                            gpointer self);
    static gboolean onGetStatus(PanelCloud1 *, GDBusMethodInvocation *call, gpointer self);
    static gboolean onAnswer(PanelCloud1 *, GDBusMethodInvocation *call, guint64 number,
                             GVariant *message, gpointer self);

    Host &m_host;
    service::Object<PanelCloud1> m_interface;
};

} // namespace cloud
