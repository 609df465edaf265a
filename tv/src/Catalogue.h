#ifndef HOMELOOM_TV_CATALOGUE_H
#define HOMELOOM_TV_CATALOGUE_H

#include <string>

namespace homeloom::tv {

/// Everything that programs can ask for, hear and misdirect, as one JSON document, made from the tables that the
/// program itself goes by: version, requests, notifies, endpoint_fields, commands, agent_functions, cloud_endpoints.
/// Its form is told by schemaJson("catalogue"). The same text for as long as the program runs, and in each run of a
/// version; of any thread.
const std::string& catalogueJson();

}  // namespace homeloom::tv

#endif
