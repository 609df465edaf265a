#ifndef HOMELOOM_SWEEP_MANUAL_H
#define HOMELOOM_SWEEP_MANUAL_H

#include <string>

namespace CLI {
class App;
}

namespace homeloom::sweep {

/// The manual page of the program that has these options, for man(1).
std::string manualOf(const CLI::App& app);

}  // namespace homeloom::sweep

#endif
