#ifndef HOMELOOM_TV_CLOUDHOST_H
#define HOMELOOM_TV_CLOUDHOST_H

namespace homeloom::tv {

/// Runs the simulated cloud and leads all web requests to it, for as long as it lives.
class CloudHost {
public:
    CloudHost();
    ~CloudHost();
    CloudHost(const CloudHost&) = delete;
    CloudHost& operator=(const CloudHost&) = delete;

    /// The cloud is there, and all web requests go to it; or it is gone, and they are refused.
    static void up();
    static void down();
};

}  // namespace homeloom::tv

#endif
