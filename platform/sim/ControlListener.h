#pragma once

#include "platform/sim/Requests.h"

#include <QByteArray>
#include <QLocalServer>
#include <QLocalSocket>
#include <QObject>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

namespace sim {

// The listening socket; lives in the control thread.
class ControlListener : public QObject
{
    Q_OBJECT

public:
    explicit ControlListener(std::chrono::milliseconds guiPatience) : guiPatience_(guiPatience) {}
    bool listen(const QString &socketPath);
    QString errorString() const { return server_->errorString(); }

private:
    void acceptClients();

    const std::chrono::milliseconds guiPatience_;
    QLocalServer *server_ = new QLocalServer(this);
};

// One connection; deletes itself when it ends. Lives in the control thread.
class ControlClient : public QObject
{
    Q_OBJECT

public:
    ControlClient(QLocalSocket *socket, std::chrono::milliseconds guiPatience, QObject *parent);
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

    const std::chrono::milliseconds guiPatience_;
    QLocalSocket *socket_;
    std::shared_ptr<Errand> errand_;
};

} // namespace sim
