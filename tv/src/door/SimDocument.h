#ifndef HOMELOOM_TV_DOOR_SIMDOCUMENT_H
#define HOMELOOM_TV_DOOR_SIMDOCUMENT_H

#include <string>

namespace homeloom::tv {

/// The other side as it stands, as one JSON document: what devices say of themselves, what was made to fail, the
/// session, the time. Of any thread.
std::string simDocument();

/// The TV's language setting: "en_US.utf8".
std::string languageSetting();

}  // namespace homeloom::tv

#endif
