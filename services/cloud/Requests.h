// Messages on their way to the program: one at a time, the next once it is answered.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <random>
#include <string>

namespace cloud {

class Requests
{
public:
    using Hand = std::function<void(std::uint64_t number, const std::string &message)>;

    // `hand` gives a message to the program.
    explicit Requests(Hand hand) : m_hand(std::move(hand)) {}

    // False, and it is forgotten, if 16 are waiting.
    bool add(std::string message);
    // Whether it is the one under way; the next is handed over then.
    bool answered(std::uint64_t number);
    void clear();

private:
    void handFirst();

    Hand m_hand;
    std::deque<std::string> m_waiting; // the first is under way
    // Its. The answer to a request of a service that has died since is not taken for this one's.
    std::uint64_t m_number = std::random_device()();
};

} // namespace cloud
