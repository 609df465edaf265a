#ifndef HOMELOOM_SWEEP_RUNNER_H
#define HOMELOOM_SWEEP_RUNNER_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "Verdict.h"

namespace homeloom::sweep {

/// How a process that made runs for us came to its end.
struct Ending {
    int status = 0;                     // as waitpid() tells it
    bool wasEnded = false;              // by us, since it did not end by itself
    std::vector<std::string> verdicts;  // lines, one for each run
    std::string output;                 // standard output and error
    std::chrono::milliseconds duration{0};
};

using Arguments = std::vector<std::string>;

/// Makes runs in processes of their own, which are this program again, several at a time. From one thread.
class Runner {
public:
    /// `limit` is how long a process may take on this machine until it counts as one that hangs.
    Runner(int jobs, std::chrono::seconds limit) : _jobs(jobs), _limit(limit) {}

    /// Starts a process for each list of arguments, and tells of each end by the list's place. Throws
    /// std::runtime_error when no process can be started.
    void run(const std::vector<Arguments>& processes,
             const std::function<void(std::size_t, const Ending&)>& ended) const;

    /// The verdict about the run, which was the process's last or only one: its own, or what its end says.
    Verdict judge(const Ending& ending) const;

private:
    const int _jobs;
    const std::chrono::seconds _limit;
};

/// Hands verdicts to the process that started this one, by the number that it gave.
void sendVerdict(int file, const Verdict& verdict);

}  // namespace homeloom::sweep

#endif
