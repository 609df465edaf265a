#include "CloudHost.h"

#include <desktop/Web.h>
#include <simulator/Cloud.h>

namespace homeloom::tv {

CloudHost::CloudHost() {
    up();
}

CloudHost::~CloudHost() {
    down();
    desktop::web::reset();
}

void CloudHost::up() {
    auto& cloud = simulator::Cloud::instance();
    cloud.start();
    desktop::web::routeOtherHosts(cloud.port());
    desktop::web::trust(cloud.caFile());
}

void CloudHost::down() {
    simulator::Cloud::instance().stop();
}

}  // namespace homeloom::tv
