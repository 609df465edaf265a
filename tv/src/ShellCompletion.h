#ifndef HOMELOOM_TV_SHELLCOMPLETION_H
#define HOMELOOM_TV_SHELLCOMPLETION_H

#include <string>

namespace homeloom::tv {

/// What makes a shell, "bash" or "zsh", complete the program's options, their values and the commands behind --exec.
std::string shellCompletion(const std::string& shell);

}  // namespace homeloom::tv

#endif
