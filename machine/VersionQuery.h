// The question to the panel's version service, asked where it holds up nobody.
#pragma once

#include "platform/services.h"

#include <QObject>

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

// Lives as long as whoever made it or the thread that asks, whichever is longer; hence always held
// by a shared pointer.
class VersionQuery : public QObject, public std::enable_shared_from_this<VersionQuery>
{
    Q_OBJECT

public:
    // Nothing if the service did not answer.
    using Answer = std::optional<std::vector<dsl::VersionEntry_T>>;

    // Has a thread of the pool ask. Returns false if the pool takes no job; answered() follows
    // otherwise, after three seconds at most.
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
