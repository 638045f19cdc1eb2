// The way to the cloud: four stages, one after the other, again and again until the last one
// stands.
#pragma once

#include <chrono>
#include <string>

namespace cloud {

enum class Stage { Time, Certificate, Server, Subscription };

// What netT::CAsyncClient::getConnectedStatus() knows besides the stages.
enum Status { CONNECTED = 1, CONNECTING = 0, NOT_STARTED = -1 };
// -2 to -5.
int statusOf(Stage stage);

// Knows when what is to be tried, and nothing of how: that is the world's. A stage has 8 s. After a
// failure it all begins again from the first stage, after a pause: 1 to 2 s, then longer, up to 9
// to 18 s in the first quarter of an hour and 30 to 60 s after that. The pauses begin anew only
// when the subscription has stood for half a minute, so that a server that takes a connection and
// closes it counts as one that fails. A change of the network shortens a pause, to 5 s after the
// beginning of the last try.
class Session
{
public:
    using Clock = std::chrono::steady_clock;

    class World
    {
    public:
        virtual ~World() = default;
        // Begins the stage. Its outcome is told by passed() or failed(), at once or later.
        virtual void begin(Stage stage) = 0;
        // Gives up what is under way or stands: nothing of it is told any more.
        virtual void end() = 0;
        // Calls woken() after that time, in place of what was ordered before.
        virtual void wakeAfter(std::chrono::milliseconds time) = 0;
        virtual Clock::time_point now() = 0;
        virtual double chance() = 0; // 0 to 1
        virtual void tell(int status, const std::string &reason) = 0;
    };

    explicit Session(World &world) : m_world(world) {}

    // Begins, or begins anew with nothing of what was.
    void start();
    // The outcome of the stage under way; another one's is ignored.
    void passed(Stage stage);
    // `why` is for people.
    void failed(Stage stage, const std::string &why);
    // The connection is lost: a failure of the stage under way or, where all stood, of the server.
    void lost(const std::string &why);
    void woken();
    void networkChanged();

    int status() const { return m_status; }
    const std::string &reason() const { return m_reason; }
    bool isStanding() const { return m_phase == Phase::Standing; }

private:
    enum class Phase { Idle, Trying, Waiting, Standing };

    void tryAll();
    void fall(Stage stage, const std::string &why);
    void run(Stage stage);
    void wait();
    void hasten();
    std::chrono::milliseconds pause();
    void set(int status, const std::string &reason);

    World &m_world;
    Phase m_phase = Phase::Idle;
    Stage m_stage = Stage::Time;
    int m_status = NOT_STARTED;
    std::string m_reason;
    int m_failures = 0;          // since the subscription has stood
    Clock::time_point m_trouble; // the first of them
    Clock::time_point m_begun;   // the last try
    Clock::time_point m_due;     // the next one
    bool m_bChanged = false;     // the network, during the try
};

} // namespace cloud
