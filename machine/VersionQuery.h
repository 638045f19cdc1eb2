// The question to the panel's version service, asked on a thread of the pool.
#pragma once

#include "platform/services.h"

#include <QObject>

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

// Always held by a shared pointer: the thread that asks may outlive the page.
class VersionQuery : public QObject, public std::enable_shared_from_this<VersionQuery>
{
    Q_OBJECT

public:
    // Nothing if the service did not answer in time.
    using Answer = std::optional<std::vector<dsl::VersionEntry_T>>;

    // Returns whether the pool has taken the question; answered() follows then, within three
    // seconds of its start.
    bool ask();
    // The latest answer. Any thread.
    Answer answer() const;

signals:
    // From a thread of the pool.
    void answered();

private:
    void run();

    mutable std::mutex m_mutex; // guards the answer
    Answer m_answer;
};
