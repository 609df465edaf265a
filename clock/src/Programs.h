#ifndef HOMELOOM_CLOCK_PROGRAMS_H
#define HOMELOOM_CLOCK_PROGRAMS_H

/// The programs that this one has started, and the threads that don't count for rest.
namespace homeloom::clock {

enum class ProgramState { Lives, Stopped, Ended };

/// The state of a process. Stopped is one to which somebody sent SIGSTOP.
ProgramState stateOf(int process);

constexpr int kMostPrograms = 16;
/// Fills in the processes that have been started and not ended; returns how many.
int livingPrograms(int (&processes)[kMostPrograms]);

bool isExempt();
bool isExempt(int thread);
void exempt(bool isExempt);

}  // namespace homeloom::clock

#endif
