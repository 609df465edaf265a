#ifndef HOMELOOM_TV_COMPLETION_H
#define HOMELOOM_TV_COMPLETION_H

#include <string>
#include <vector>

namespace homeloom::tv {

class HomeView;

/// The words that may stand where a line ends: each one whole, in place of the last word of `line`, which may be empty.
/// Sorted.
std::vector<std::string> completions(const std::string& line, const HomeView& home);

/// The word that is being written at the end of a line; empty behind a blank.
std::string lastWord(const std::string& line);

}  // namespace homeloom::tv

#endif
