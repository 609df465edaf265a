#ifndef HOMELOOM_TESTS_SUPPORT_PLACES_H
#define HOMELOOM_TESTS_SUPPORT_PLACES_H

#include <string>

// Where the tests find what the build and the source tree hold.
namespace homeloom::test {

/// The folder of the home documents of the source tree.
std::string homesFolder();

/// The apartment, the home that most tests stand in.
std::string apartmentFile();

/// The plug-in as a TV loads it.
std::string pluginFile();

}  // namespace homeloom::test

#endif
