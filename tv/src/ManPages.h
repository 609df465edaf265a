#ifndef HOMELOOM_TV_MANPAGES_H
#define HOMELOOM_TV_MANPAGES_H

#include <string>

namespace homeloom::tv {

/// A manual page, "homeloom-tv" (section 1) or "homeloom-home" (section 5), made from the options, the commands and the
/// form of homes.
std::string manPage(const std::string& name);

}  // namespace homeloom::tv

#endif
