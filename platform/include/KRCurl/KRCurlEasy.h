#ifndef HOMELOOM_PLATFORM_KRCURL_KRCURLEASY_H
#define HOMELOOM_PLATFORM_KRCURL_KRCURLEASY_H

#include <list>
#include <memory>
#include <string>

namespace KRCurl {

/// What can be set. The numbers are this wrapper's own: the transfer library that does the work has others.
enum KRCURL_OPTION_TYPE {
    KRCURL_OPTION_VERBOSE = 1,          ///< long: 1 tells the debug callback what goes on
    KRCURL_OPTION_POST = 16,            ///< long: 1 makes the request a POST, without a body unless one is set
    KRCURL_OPTION_HTTPGET = 17,         ///< long: 1 makes the request a GET
    KRCURL_OPTION_POSTFIELDSIZE = 19,   ///< long: the length of the body, which is then no C string
    KRCURL_OPTION_FOLLOWLOCATION = 20,  ///< long: 1 goes where a redirection points
    KRCURL_OPTION_TIMEOUT = 30,         ///< long: seconds for the whole transfer; without it there is no limit
    KRCURL_OPTION_CUSTOMREQUEST = 48,   ///< string: the method's name in place of GET or POST
    KRCURL_OPTION_URL = 50,             ///< string
    KRCURL_OPTION_POSTFIELDS = 59,      ///< string: the body of a POST
    KRCURL_OPTION_COPYPOSTFIELDS = 60,  ///< string: the body of a POST
    KRCURL_OPTION_HTTPHEADER = 75,      ///< list: header lines without their ends
    KRCURL_OPTION_WRITEFUNCTION = 78,   ///< callback: takes the response's body; without it the body is dropped
    KRCURL_OPTION_HEADERFUNCTION = 80,  ///< callback: takes the response's header lines, one a call, with their ends
    KRCURL_OPTION_DEBUGFUNCTION = 84,   ///< debug callback; heard only with VERBOSE
    KRCURL_OPTION_WRITEDATA = 86,       ///< user data of WRITEFUNCTION
    KRCURL_OPTION_HEADERDATA = 88,      ///< user data of HEADERFUNCTION
    KRCURL_OPTION_DEBUGDATA = 91        ///< user data of DEBUGFUNCTION
};

enum KRCURL_INFO_TYPE {
    KRCURL_INFO_RESPONSE_CODE = 8  ///< the last response's status; 0 when there was none
};

/// What a debug record holds.
enum DEBUG_TYPE {
    DEBUG_TEXT = 0,
    DEBUG_HEADER_IN = 1,
    DEBUG_HEADER_OUT = 2,
    DEBUG_DATA_IN = 3,
    DEBUG_DATA_OUT = 4,
    DEBUG_SSL_DATA_IN = 5,
    DEBUG_SSL_DATA_OUT = 6
};

/// Takes size times nmemb bytes, which no NUL ends, and returns how many it took: any other number ends the transfer.
using Callback = unsigned (*)(char* data, unsigned size, unsigned nmemb, void* userData);
/// Takes `size` bytes, which no NUL ends. What it returns does not matter.
using DebugCallback = int (*)(DEBUG_TYPE type, char* data, unsigned size, void* userData);

/// One web request, made on the thread that calls send(). Different objects may be used on different threads.
///
/// Operations that return a bool return true on success. Before Initialize(), and with an option that is not of the
/// overload's kind, setOption() returns false and sets nothing. Texts and lists are copied. What an option set stays
/// until it is set again or reset() is called.
class KRCurlEasy {
public:
    KRCurlEasy();
    ~KRCurlEasy();
    KRCurlEasy(const KRCurlEasy&) = delete;
    KRCurlEasy& operator=(const KRCurlEasy&) = delete;

    bool Initialize();

    bool setOption(KRCURL_OPTION_TYPE option, const std::string& value);
    bool setOption(KRCURL_OPTION_TYPE option, const long& value);
    bool setOption(KRCURL_OPTION_TYPE option, const std::list<std::string>& value);
    bool setOption(KRCURL_OPTION_TYPE option, Callback callback);
    bool setOption(KRCURL_OPTION_TYPE option, DebugCallback callback);
    /// The data belongs to the caller and must last until send() has returned.
    bool setOption(KRCURL_OPTION_TYPE option, void* userData);

    /// Makes the request and waits for its end; the callbacks run meanwhile on this thread. True when a whole response
    /// came, whatever its status. An exception that leaves a callback ends the transfer and comes out here.
    bool send();
    /// Reads a result of the last send().
    bool getInfo(KRCURL_INFO_TYPE info, long* value);
    /// As after Initialize().
    void reset();

private:
    class Handle;
    std::unique_ptr<Handle> _handle;
};

}  // namespace KRCurl

#endif
