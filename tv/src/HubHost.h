#ifndef HOMELOOM_TV_HUBHOST_H
#define HOMELOOM_TV_HUBHOST_H

namespace simulator {
struct Home;
}

namespace homeloom::tv {

/// Makes this TV one that can be a hub. The hub control application runs, if it is installed, for as long as this
/// lives.
class HubHost {
public:
    HubHost(const simulator::Home& home, bool isInstalled);
    ~HubHost();
    HubHost(const HubHost&) = delete;
    HubHost& operator=(const HubHost&) = delete;
};

}  // namespace homeloom::tv

#endif
