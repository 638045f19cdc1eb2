// How the panel stands to the Wi-Fi networks: which it is in or joins, and which are in range.
#pragma once

#include "network/AccessPoint.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

enum class WifiLink {
    Apart,     // in no network (WIFI_STATE_T 0, 2, 4, 6)
    Found,     // on its way into one that was found (1)
    Joining,   // on its way into one, no scan meanwhile (3)
    Connected, // (7)
    Failed,    // (5)
};

// What the page does about an event, in this order.
enum WifiAction : unsigned {
    NOTHING = 0,
    STOP_WAITING = 1U << 0U,     // end the time-out
    WAIT = 1U << 1U,             // begin the time-out anew: timedOut() after 16 s
    HIDE_NETWORK = 1U << 2U,     // clear the top row, and rebuild the list
    ASK_NETWORK = 1U << 3U,      // getConnectInfo, getSignal; then named()
    SHOW_NETWORK = 1U << 4U,     // show the top row, and rebuild the list
    ASK_STATE = 1U << 5U,        // getStatus; then answered()
    TAKE_STATE = 1U << 6U,       // slot_UpdataState with the state that was answered
    ANNOUNCE_FAILURE = 1U << 7U, // slot_UpdataState(5), behind the events that wait already
    SHOW_FAILURE = 1U << 8U,     // the message box; then failureRead()
};
using WifiActions = unsigned;

// Knows no widget and calls no service: it is told events and returns what is to be done.
//
// What an answer of the service leads to, by the link before. "=": nothing is done.
//
//   answer     | Apart       Found        Joining      Connected   Failed
//   -----------+----------------------------------------------------------
//   0 2 4 6    | =           Apart (a)    Apart (a)    Apart       =
//   1          | Found       =            Found        Found       Found
//   3          | Joining     Joining      =            Joining     Joining
//   5          | Failed (b)  Failed (b)   Failed (b)   Failed (b)  =
//   7          | Connected, whatever the link is; it is taken each time
//   none       | =, and WAIT
//   other      | =
//
//   (a) not in the 15 s after an own join: the service passes through such states on its way
//   (b) only while the page is seen; announced, and void if another state is taken before
//
// After a time-out a joining that goes on makes the page WAIT again, and an answer that does not
// come is not waited for any more: each question holds the page up.
//
//   other event             | link         | actions
//   ------------------------+--------------+----------------------------------------------------
//   take(0 2 4 6)           | Apart        | STOP_WAITING, HIDE_NETWORK
//   take(1), take(3)        | Found/Joining| WAIT, ASK_NETWORK once seen
//   take(5)                 | Failed       | STOP_WAITING, HIDE_NETWORK, SHOW_FAILURE; no polls
//   take(7)                 | Connected    | STOP_WAITING, ASK_NETWORK once seen
//   named, with a network   | -            | SHOW_NETWORK
//   named, without          | -            | SHOW_NETWORK if one is known by name, else WAIT
//   timedOut                | -            | ASK_STATE if seen, else WAIT
//   leaveDevice             | Apart        | STOP_WAITING, HIDE_NETWORK
//
// Joining: beginJoin() stops the polls and makes void what they have under way; the page takes 0,
// calls setConnectInfo and connectwifi, reports joined(), which resumes the polls, and takes 3.
//
// The page's events come from the GUI thread, those of the refresh job from the rate timer's. One
// mutex guards all of it; no other lock is taken and, but for withRows(), nothing is called
// meanwhile.
class WifiConnection
{
public:
    // --- Events of the page: GUI thread; `nowMs` as COS::CosTime::GetTickCountCos() -------------

    // Whether the page is seen.
    WifiActions setVisible(bool visible);
    // Whether the device is on, and whether it also has not been asked to change.
    void setDevice(bool on, bool usable);
    // The device is gone or off: nothing of its networks holds, but for the list in store.
    WifiActions leaveDevice();

    // getStatus has answered with `state`, or not at all.
    enum class AskedBy { Record, TimeOut };
    WifiActions answered(std::optional<int> state, AskedBy by, std::int64_t nowMs);
    // Whether `state` is an announced failure that another state has overtaken. To be asked before
    // each take().
    bool isOvertaken(int state);
    // A state, of WIFI_STATE_T, that holds; another one is ignored.
    WifiActions take(int state);
    // The service has said which network is configured, or nothing.
    WifiActions named(const std::optional<std::string> &network);
    WifiActions timedOut() const;
    void failureRead();

    // Whether a touch on the network counts: it can be joined, and the touch is not the second of
    // two, whose row has moved.
    bool mayJoin(const netT::stApInfo_tag &accessPoint, std::int64_t nowMs) const;
    void beginJoin();
    // connectwifi() is under way; `taken`: the service has taken name and password.
    void joined(const netT::stApInfo_tag &accessPoint, bool taken, std::int64_t nowMs);

    // --- Events of the refresh job: rate timer's thread ----------------------------------------

    // Whether there is work at all: the page is seen, and its device usable.
    bool isWatched() const;
    bool mayScan() const;
    // A scan has ended. Returns whether the list is another one: an empty one changes nothing.
    bool scanned(bool failed, std::vector<netT::stApInfo_tag> list);
    // A ticket for one question about the state; nothing while the polls are suspended.
    std::optional<unsigned> pollTicket() const;
    // The question was answered by a failure. Returns whether it is to be told: not of a network
    // that is no longer asked for, nor to a page that has been left, and once.
    bool pollFailed(unsigned ticket);

    // --- What there is to show: any thread -----------------------------------------------------

    void setList(std::vector<netT::stApInfo_tag> list);
    bool isJoining() const;
    bool isUsable() const;
    // The level of the network that the panel is in or joins, if the last scan has found it.
    std::optional<int> level() const;

    enum class Search { Running, Failed, FoundNothing, FoundNoOther };
    Search search() const;

    // Calls `use(rows)` with the networks in range but for the own one, strongest first, while the
    // list is held. `use` may call nothing of this object.
    template <typename Use>
    void withRows(Use &&use) const
    {
        const std::unique_lock<std::mutex> lock(m_mutex);
        use(rows());
    }

private:
    bool isOnItsWay() const;
    bool isNews(WifiLink link, std::int64_t nowMs) const;
    bool announceFailure();
    void suspendPolls();
    void store(std::vector<netT::stApInfo_tag> &list);
    bool isCurrent(const netT::stApInfo_tag &accessPoint) const;
    std::vector<netT::stApInfo_tag> rows() const;

    mutable std::mutex m_mutex; // of everything below
    WifiLink m_link = WifiLink::Apart;
    std::string m_sNetwork;                // that it is in or joins; empty without one
    std::optional<std::int64_t> m_nJoined; // an own join, until it is known how it ended
    bool m_bVisible = false;
    bool m_bOn = false;
    bool m_bUsable = false;
    bool m_bNetworkHidden = false; // is to be asked for and shown once the page is seen
    bool m_bBoxOpen = false;       // of a failure
    bool m_bPolls = true;
    unsigned m_nTicket = 0;    // of polls that count
    unsigned m_nAnnounced = 0; // failures that have not reached the page yet
    unsigned m_nOvertaken = 0; // announced before those, and void
    bool m_bScanned = false;   // since the device is on
    bool m_bScanFailed = false;
    std::vector<netT::stApInfo_tag> m_list;
};
