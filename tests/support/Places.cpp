// Only this file is compiled with paths of its build, so that several source trees can share one compiler cache.
#include "support/Places.h"

namespace homeloom::test {

std::string homesFolder() {
    return HOMELOOM_HOMES_DIR;
}

std::string apartmentFile() {
    return homesFolder() + "/apartment.json";
}

std::string pluginFile() {
    return HOMELOOM_PLUGIN_PATH;
}

}  // namespace homeloom::test
