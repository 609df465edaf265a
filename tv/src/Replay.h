#ifndef HOMELOOM_TV_REPLAY_H
#define HOMELOOM_TV_REPLAY_H

#include <string>
#include <vector>

#include "Tape.h"

namespace homeloom::tv {

/// How the session of one tape differs from that of another, as a person reads it: which field of which device, before
/// and after. Empty if they are the same to the letter.
std::vector<std::string> tapeDifferences(const Tape& recorded, const Tape& replayed);

}  // namespace homeloom::tv

#endif
