#include "SimNames.h"

namespace homeloom::tv {

using simulator::Agent;

const std::vector<std::string>& deviceStatusNames() {
    static const std::vector<std::string> names{"connected", "disconnected", "inactive", "hidden"};
    return names;
}

const std::map<std::string, Agent::Connection>& connectionNames() {
    static const std::map<std::string, Agent::Connection> names{{"connected", Agent::Connection::Connected},
                                                                {"disconnected", Agent::Connection::Disconnected},
                                                                {"rejected", Agent::Connection::Rejected},
                                                                {"io-error", Agent::Connection::IoError},
                                                                {"updating", Agent::Connection::Updating}};
    return names;
}

}  // namespace homeloom::tv
