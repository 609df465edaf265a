#ifndef HOMELOOM_PLATFORM_KRCURL_KRCURLUTILITY_H
#define HOMELOOM_PLATFORM_KRCURL_KRCURLUTILITY_H

#include <string>

namespace KRCurl {

class KRCurlUtility {
public:
    /// Appends "key=value", both URL-encoded, with the separator that it needs in front: "?" for the first pair, "&"
    /// for the others. `query` is a whole URL or what follows its path.
    static void makeQueryString(std::string& query, std::string key, std::string value);
};

}  // namespace KRCurl

#endif
