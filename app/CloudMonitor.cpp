#include "app/CloudMonitor.h"

#include <utility>

CloudMonitor::CloudMonitor(netT::CAsyncClient &client, netT::CAsyncClient::MessageHandler handler,
                           void *context, LinkMonitor &links, Events events)
    : m_client(client),
      m_start(client, handler, context),
      m_links(links),
      m_events(std::move(events))
{
}

void CloudMonitor::run(const std::vector<netT::stAllNetInfo_tag> &records)
{
    m_start.run();
    if (!m_links.run(records))
        return;
    const int status = m_links.isAnyOnline() ? m_client.getConnectedStatus() : -1;
    m_events.checked(m_start.loadResult(), status, m_start.region());
    const bool up = status == 1;
    if (up == m_bCloudUp)
        return;
    m_bCloudUp = up;
    m_events.cloudChanged(up);
}
