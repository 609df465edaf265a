#ifndef HOMELOOM_SIMULATOR_HOMESCHEMA_H
#define HOMELOOM_SIMULATOR_HOMESCHEMA_H

#include <string>

namespace simulator {

/// What the loader accepts, as JSON Schemas (2020-12) without a head. A document may fit and be refused nevertheless:
/// for an id that nothing has, a second thing of the same id, or a value that isn't of its property's type.
std::string homeSchema();
std::string modelSchema();

/// What of a UI metadata document the plug-in reads. It takes others too, and skips the rest.
std::string uiMetadataSchema();

}  // namespace simulator

#endif
