#ifndef HOMELOOM_TV_HUBHOST_H
#define HOMELOOM_TV_HUBHOST_H

namespace simulator {
struct Home;
}

namespace homeloom::tv {

/// Makes this TV one that can be a hub. The hub control application runs, if it is installed, for as long as this
/// lives. It needs a while to start, in which the desk does other things: the plug-in mustn't begin before start() has
/// returned.
class HubHost {
public:
    explicit HubHost(bool isInstalled);
    ~HubHost();
    HubHost(const HubHost&) = delete;
    HubHost& operator=(const HubHost&) = delete;

    void identify(const simulator::Home& home);
    void start();

private:
    const bool _isInstalled;
};

}  // namespace homeloom::tv

#endif
