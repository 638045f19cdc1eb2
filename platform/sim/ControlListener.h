#pragma once

#include "platform/sim/Requests.h"

#include <QByteArray>
#include <QLocalServer>
#include <QLocalSocket>
#include <QObject>

#include <atomic>
#include <functional>
#include <memory>

namespace sim {

// The listening socket; lives in the control thread.
class ControlListener : public QObject
{
    Q_OBJECT

public:
    bool listen(const QString &socketPath);
    QString errorString() const { return server_->errorString(); }

private:
    void acceptClients();

    QLocalServer *server_ = new QLocalServer(this);
};

// One connection; deletes itself when it ends. Lives in the control thread.
class ControlClient : public QObject
{
    Q_OBJECT

public:
    ControlClient(QLocalSocket *socket, QObject *parent);
    ~ControlClient() override;

private:
    // Work for the GUI thread that has not been answered yet.
    struct Errand
    {
        std::atomic<bool> open{true};
    };

    void readRequests();
    void serve(const QByteArray &line);
    void askGui(std::function<Json()> work);
    void finishErrand(const std::shared_ptr<Errand> &errand, const std::string &reply);
    void send(const std::string &reply);

    QLocalSocket *socket_;
    std::shared_ptr<Errand> errand_;
};

} // namespace sim
