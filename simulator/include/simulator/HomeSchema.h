#ifndef HOMELOOM_SIMULATOR_HOMESCHEMA_H
#define HOMELOOM_SIMULATOR_HOMESCHEMA_H

#include <string>
#include <vector>

namespace simulator {

/// What the loader accepts, as JSON Schemas (2020-12) without a head. A document may fit and be refused nevertheless:
/// for an id that nothing has, a second thing of the same id, or a value that isn't of its property's type.
std::string homeSchema();
std::string modelSchema();

/// What of a UI metadata document the plug-in reads. It takes others too, and skips the rest.
std::string uiMetadataSchema();

/// A member of a home or model document, for pages about it.
struct HomeMember {
    std::string place;  // "devices[].core.type"
    std::string kind;   // "text", "list", ...
    bool required = false;
    std::string meaning;  // may be empty
};
/// All of them, each before its own members. A model within a home is told by modelMembers() alone.
std::vector<HomeMember> homeMembers();
std::vector<HomeMember> modelMembers();

}  // namespace simulator

#endif
