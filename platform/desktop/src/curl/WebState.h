#ifndef HOMELOOM_DESKTOP_CURL_WEBSTATE_H
#define HOMELOOM_DESKTOP_CURL_WEBSTATE_H

#include <string>
#include <string_view>
#include <vector>

namespace homeloom::desktop::web {

/// What a request has to know of the desk.
struct Surroundings {
    std::vector<std::string> connectTo;  // as CURLOPT_CONNECT_TO wants them
    std::string caFile;                  // empty: this machine's
};
Surroundings surroundings();

/// One request more is under way as long as this lives.
class UnderWay {
public:
    UnderWay();
    ~UnderWay();
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;
};

/// Whether this step is to fail. Each step asks once, with its own name.
bool takeFailure(std::string_view step);

}  // namespace homeloom::desktop::web

#endif
