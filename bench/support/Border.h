#ifndef HOMELOOM_BENCH_SUPPORT_BORDER_H
#define HOMELOOM_BENCH_SUPPORT_BORDER_H

#include <string>

/// The plug-in's border, for who measures the plug-in alone: what it gave the agent is called here without the agent,
/// and what it tells the framework ends here. A program that uses it has these functions of the contract from it.
namespace bench::border {

/// An update of the apartment's washer as the agent tells it; numbers in turn change the state text each time.
/// Ends the program if the washer is not subscribed.
void update(int number);
/// The texts of update(), for whoever wants to know what parsing them costs.
const std::string& representation(int number);
const std::string& types();

/// An event of the apartment's plug behind the hub, as the agent tells it. Ends the program if nobody listens.
void sendHubEvent(int number);
/// Its text.
std::string hubEvent(int number);

/// While one lives, notifies are counted and not passed on. One at a time.
class Closed {
public:
    Closed();
    ~Closed();
    Closed(const Closed&) = delete;
    Closed& operator=(const Closed&) = delete;

    /// Waits for that many notifies since the beginning. Ends the program if they don't come.
    void waitFor(int count);
};

/// The processors of a virtual machine differ in speed, by a factor of two and from second to second. Floor and figure
/// must meet the same one, so this thread, and those that it starts from now on, stay where it is.
void stayOnOneProcessor();

}  // namespace bench::border

#endif
