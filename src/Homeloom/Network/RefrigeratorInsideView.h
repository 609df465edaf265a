#ifndef HOMELOOM_HOMELOOM_NETWORK_REFRIGERATORINSIDEVIEW_H
#define HOMELOOM_HOMELOOM_NETWORK_REFRIGERATORINSIDEVIEW_H

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include <KRCurl/KRCurlEasy.h>

#include "Common/Mutex.h"

namespace VMFramework::json {
class JsonValue;
}

namespace VMFramework::HomeLoom {

/// Where the pictures of a refrigerator's inside are, as the screens take it.
struct InsideViewUrls {
    std::string urls;      ///< text of a JSON array, in the order of the contents
    std::string dateTime;  ///< when the pictures were taken, in the TV's local time: 20240501090000; may be empty
};

/// Turns what a refrigerator tells about its contents into the addresses of its pictures: the platform keeps each
/// behind a link that leads on to a signed address.
///
/// RequestImageUrls is for one thread at a time; it uses further threads of its own, one for each picture.
class RefrigeratorInsideView {
public:
    /// In a refrigerator's contents resource: the array of its pictures.
    static constexpr char kContents[] = "x.com.norvane.da.contents";

    /// The text that has the refrigerator take new pictures, for that resource. False if it can't be made.
    bool RequestValueRefresh(const std::string& resourceUri, std::string& rcp);
    /// Waits until all links have answered, 15 seconds at most. Throws if there is no picture, or one has no address.
    InsideViewUrls RequestImageUrls(const std::string& deviceId, const std::string& representation,
                                    const std::string& accessToken);

private:
    struct RequestUserData {
        std::size_t index;
        RefrigeratorInsideView* view;
    };

    static std::vector<std::string> getRequestUrls(const std::string& deviceId, const json::JsonValue& representation);
    static int getServerType();
    static std::string getServerURL(int type);
    static std::string getDateTime(const json::JsonValue& representation);
    std::string requestImageUrls(const std::vector<std::string>& urls, const std::string& accessToken);
    std::string takeImageUrls(std::size_t count);
    static void requestRedirectUrl(const std::string& url, std::size_t index, const std::string& accessToken,
                                   RefrigeratorInsideView* view);
    static int onRedirectUrl(KRCurl::DEBUG_TYPE type, char* data, unsigned size, void* userData);
    void addImageUrl(const std::string& url, std::size_t index);

    Mutex _mutex;  // a leaf
    std::unordered_map<std::size_t, std::string> _imageUrls GUARDED_BY(_mutex);
};

}  // namespace VMFramework::HomeLoom

#endif
