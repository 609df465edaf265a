#ifndef HOMELOOM_SIMULATOR_ENDPOINTS_H
#define HOMELOOM_SIMULATOR_ENDPOINTS_H

#include <map>
#include <string>

namespace simulator {

/// A request as its endpoint sees it, decoded.
struct WebRequest {
    std::string method;
    std::string host;
    std::string path;
    std::multimap<std::string, std::string> parameters;
    std::string authorization;
    std::string body;

    /// Empty when there is none.
    std::string parameter(const std::string& name) const;
};

struct WebAnswer {
    int status = 200;
    std::string body;
    std::string contentType = "application/json";
    std::string location;  // of a redirect
};

/// What a cloud in good health answers over the home. Takes the world's mutex.
class Endpoints {
public:
    /// The name of the endpoint that serves the request; empty for none.
    static std::string nameOf(const std::string& method, const std::string& path);
    static WebAnswer answer(const std::string& name, const WebRequest& request);
    static WebAnswer error(int status, const std::string& reason);
};

}  // namespace simulator

#endif
