#include "CloudHost.h"

#include <desktop/Web.h>
#include <simulator/Cloud.h>

namespace homeloom::tv {

CloudHost::CloudHost() {
    auto& cloud = simulator::Cloud::instance();
    cloud.start();
    desktop::web::routeOtherHosts(cloud.port());
    desktop::web::trust(cloud.caFile());
}

CloudHost::~CloudHost() {
    simulator::Cloud::instance().stop();
    desktop::web::reset();
}

}  // namespace homeloom::tv
