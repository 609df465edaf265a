#include <KRCurl/KRCurlEasy.h>

#include <curl/curl.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <optional>
#include <string_view>
#include <utility>

#include "curl/WebState.h"

namespace web = homeloom::desktop::web;

namespace KRCurl {

namespace {

// A redirection loop ends here rather than at the time limit.
constexpr long kMaxRedirections = 30;
constexpr char kProtocols[] = "http,https";

// Texts, header lines included, end at a NUL for the transfer; a line break in a header line would begin another one.
bool isOneLine(const std::string& text) {
    constexpr std::string_view kBreaks("\0\r\n", 3);
    return text.find_first_of(kBreaks) == std::string::npos;
}

bool initializeLibrary() {
    static const bool isInitialized = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return isInitialized;
}

struct CurlDeleter {
    void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
};

struct ListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using List = std::unique_ptr<curl_slist, ListDeleter>;

template <typename Lines>
std::optional<List> makeList(const Lines& lines) {
    List list;
    for (const std::string& line : lines) {
        curl_slist* const longer = curl_slist_append(list.get(), line.c_str());
        if (longer == nullptr) {
            return std::nullopt;
        }
        static_cast<void>(list.release());  // it's the head of the longer one, or there was none
        list.reset(longer);
    }
    return list;
}

// What the plug-in set for one direction: its function has another prototype than curl's.
struct Receiver {
    Callback function = nullptr;
    void* userData = nullptr;
};

}  // namespace

/// The easy handle, and what curl uses without copying it.
class KRCurlEasy::Handle {
public:
    static std::unique_ptr<Handle> create();

    bool set(KRCURL_OPTION_TYPE option, const std::string& value);
    bool set(KRCURL_OPTION_TYPE option, long value);
    bool set(KRCURL_OPTION_TYPE option, const std::list<std::string>& value);
    bool set(KRCURL_OPTION_TYPE option, Callback callback);
    bool set(KRCURL_OPTION_TYPE option, DebugCallback callback);
    bool set(KRCURL_OPTION_TYPE option, void* userData);
    bool send();
    bool responseCode(long& value) const;
    void reset();

private:
    template <typename Value>
    bool setCurl(CURLoption option, Value value) {
        return curl_easy_setopt(_curl.get(), option, value) == CURLE_OK;
    }
    bool setBasics();
    bool holdsFieldSize(const std::string& text) const;
    bool setFields(CURLoption option, const std::string& text);
    bool setSurroundings();

    template <typename Size, typename Function>
    Size guarded(Size failure, const Function& function) noexcept;
    static std::size_t writeBody(char* data, std::size_t size, std::size_t nmemb, void* self);
    static std::size_t writeHeader(char* data, std::size_t size, std::size_t nmemb, void* self);
    std::size_t write(const Receiver& receiver, char* data, std::size_t size, std::size_t nmemb);
    static int debug(CURL* curl, curl_infotype type, char* data, std::size_t size, void* self);

    // The lists outlive the handle.
    List _headers;
    List _connectTo;
    std::string _fields;
    std::unique_ptr<CURL, CurlDeleter> _curl;

    std::optional<long> _fieldSize;
    std::optional<long> _fieldsLength;
    Receiver _body;
    Receiver _header;
    DebugCallback _debug = nullptr;
    void* _debugData = nullptr;
    std::exception_ptr _exception;
};

std::unique_ptr<KRCurlEasy::Handle> KRCurlEasy::Handle::create() {
    auto handle = std::make_unique<Handle>();
    handle->_curl.reset(initializeLibrary() ? curl_easy_init() : nullptr);
    return handle->_curl && handle->setBasics() ? std::move(handle) : nullptr;
}

bool KRCurlEasy::Handle::setBasics() {
    // Without functions of ours curl would write bodies to standard output, and the token to standard error.
    return setCurl(CURLOPT_WRITEFUNCTION, writeBody) && setCurl(CURLOPT_WRITEDATA, this) &&
           setCurl(CURLOPT_DEBUGFUNCTION, debug) && setCurl(CURLOPT_DEBUGDATA, this) &&
           // Requests are made on any thread, and signals belong to the whole process.
           setCurl(CURLOPT_NOSIGNAL, 1L) && setCurl(CURLOPT_MAXREDIRS, kMaxRedirections) &&
           setCurl(CURLOPT_PROTOCOLS_STR, kProtocols) && setCurl(CURLOPT_REDIR_PROTOCOLS_STR, kProtocols) &&
           // A proxy of this machine would take the routes away.
           setCurl(CURLOPT_PROXY, "") && setSurroundings();
}

bool KRCurlEasy::Handle::set(KRCURL_OPTION_TYPE option, const std::string& value) {
    switch (option) {
        case KRCURL_OPTION_URL:
            return isOneLine(value) && setCurl(CURLOPT_URL, value.c_str());
        case KRCURL_OPTION_CUSTOMREQUEST:
            return isOneLine(value) && setCurl(CURLOPT_CUSTOMREQUEST, value.c_str());
        case KRCURL_OPTION_POSTFIELDS:
            if (!holdsFieldSize(value)) {
                return false;
            }
            _fields = value;
            return setFields(CURLOPT_POSTFIELDS, _fields);
        case KRCURL_OPTION_COPYPOSTFIELDS:
            return holdsFieldSize(value) && setFields(CURLOPT_COPYPOSTFIELDS, value);
        default:
            return false;
    }
}

// Or curl would read on behind the text.
bool KRCurlEasy::Handle::holdsFieldSize(const std::string& text) const {
    return _fieldSize.value_or(-1) <= static_cast<long>(text.size());
}

bool KRCurlEasy::Handle::setFields(CURLoption option, const std::string& text) {
    _fieldsLength = static_cast<long>(text.size());
    return setCurl(CURLOPT_POSTFIELDSIZE, _fieldSize.value_or(-1)) && setCurl(option, text.c_str());
}

bool KRCurlEasy::Handle::set(KRCURL_OPTION_TYPE option, long value) {
    switch (option) {
        case KRCURL_OPTION_VERBOSE:
            return setCurl(CURLOPT_VERBOSE, value);
        case KRCURL_OPTION_POST:
            // A POST without fields would have curl read the body from standard input.
            return setCurl(CURLOPT_POST, value) && (_fieldsLength || _fieldSize || setCurl(CURLOPT_POSTFIELDSIZE, 0L));
        case KRCURL_OPTION_HTTPGET:
            return setCurl(CURLOPT_HTTPGET, value);
        case KRCURL_OPTION_POSTFIELDSIZE:
            if (value < -1 || (_fieldsLength && value > *_fieldsLength)) {
                return false;
            }
            _fieldSize = value;
            return setCurl(CURLOPT_POSTFIELDSIZE, value);
        case KRCURL_OPTION_FOLLOWLOCATION:
            return setCurl(CURLOPT_FOLLOWLOCATION, value);
        case KRCURL_OPTION_TIMEOUT:
            return value >= 0 && setCurl(CURLOPT_TIMEOUT, value);
        default:
            return false;
    }
}

bool KRCurlEasy::Handle::set(KRCURL_OPTION_TYPE option, const std::list<std::string>& value) {
    if (option != KRCURL_OPTION_HTTPHEADER || !std::all_of(value.begin(), value.end(), isOneLine)) {
        return false;
    }
    auto headers = makeList(value);
    if (!headers || !setCurl(CURLOPT_HTTPHEADER, headers->get())) {
        return false;
    }
    _headers = std::move(*headers);
    return true;
}

bool KRCurlEasy::Handle::set(KRCURL_OPTION_TYPE option, Callback callback) {
    switch (option) {
        case KRCURL_OPTION_WRITEFUNCTION:
            _body.function = callback;
            return true;
        case KRCURL_OPTION_HEADERFUNCTION:
            _header.function = callback;
            // With HEADERDATA alone curl would hand the header to the body's function.
            return setCurl(CURLOPT_HEADERFUNCTION, callback != nullptr ? writeHeader : nullptr) &&
                   setCurl(CURLOPT_HEADERDATA, callback != nullptr ? this : nullptr);
        default:
            return false;
    }
}

bool KRCurlEasy::Handle::set(KRCURL_OPTION_TYPE option, DebugCallback callback) {
    if (option != KRCURL_OPTION_DEBUGFUNCTION) {
        return false;
    }
    _debug = callback;
    return true;
}

bool KRCurlEasy::Handle::set(KRCURL_OPTION_TYPE option, void* userData) {
    switch (option) {
        case KRCURL_OPTION_WRITEDATA:
            _body.userData = userData;
            return true;
        case KRCURL_OPTION_HEADERDATA:
            _header.userData = userData;
            return true;
        case KRCURL_OPTION_DEBUGDATA:
            _debugData = userData;
            return true;
        default:
            return false;
    }
}

bool KRCurlEasy::Handle::setSurroundings() {
    const web::Surroundings around = web::surroundings();
    auto connectTo = makeList(around.connectTo);
    if (!connectTo || !setCurl(CURLOPT_CONNECT_TO, connectTo->get())) {
        return false;
    }
    _connectTo = std::move(*connectTo);
    return around.caFile.empty() ||
           (setCurl(CURLOPT_CAINFO, around.caFile.c_str()) && setCurl(CURLOPT_CAPATH, static_cast<char*>(nullptr)));
}

bool KRCurlEasy::Handle::send() {
    _exception = nullptr;
    const web::UnderWay underWay;
    const bool isDone = curl_easy_perform(_curl.get()) == CURLE_OK;
    if (_exception) {
        std::rethrow_exception(std::exchange(_exception, nullptr));
    }
    return isDone;
}

bool KRCurlEasy::Handle::responseCode(long& value) const {
    return curl_easy_getinfo(_curl.get(), CURLINFO_RESPONSE_CODE, &value) == CURLE_OK;
}

// Runs a callback of the plug-in: an exception must not unwind through curl, and once there was one nothing more is
// told.
template <typename Size, typename Function>
Size KRCurlEasy::Handle::guarded(Size failure, const Function& function) noexcept {
    if (_exception) {
        return failure;
    }
    try {
        return function();
    } catch (...) {
        _exception = std::current_exception();
        return failure;
    }
}

std::size_t KRCurlEasy::Handle::write(const Receiver& receiver, char* data, std::size_t size, std::size_t nmemb) {
    const std::size_t total = size * nmemb;
    return guarded<std::size_t>(CURL_WRITEFUNC_ERROR, [&] {
        if (receiver.function == nullptr) {
            return total;
        }
        const unsigned taken =
            receiver.function(data, static_cast<unsigned>(size), static_cast<unsigned>(nmemb), receiver.userData);
        // Some other numbers mean something to curl, a pause without an end for one.
        return taken == total ? total : std::size_t{CURL_WRITEFUNC_ERROR};
    });
}

std::size_t KRCurlEasy::Handle::writeBody(char* data, std::size_t size, std::size_t nmemb, void* self) {
    auto& handle = *static_cast<Handle*>(self);
    return handle.write(handle._body, data, size, nmemb);
}

std::size_t KRCurlEasy::Handle::writeHeader(char* data, std::size_t size, std::size_t nmemb, void* self) {
    auto& handle = *static_cast<Handle*>(self);
    return handle.write(handle._header, data, size, nmemb);
}

int KRCurlEasy::Handle::debug(CURL*, curl_infotype type, char* data, std::size_t size, void* self) {
    auto& handle = *static_cast<Handle*>(self);
    if (handle._debug != nullptr) {
        handle.guarded<int>(0, [&] {
            return handle._debug(static_cast<DEBUG_TYPE>(type), data, static_cast<unsigned>(size), handle._debugData);
        });
    }
    return 0;  // curl wants nothing else, whatever the callback said
}

void KRCurlEasy::Handle::reset() {
    curl_easy_reset(_curl.get());
    auto curl = std::move(_curl);
    *this = Handle();
    _curl = std::move(curl);
    setBasics();
}

KRCurlEasy::KRCurlEasy() = default;
KRCurlEasy::~KRCurlEasy() = default;

bool KRCurlEasy::Initialize() {
    if (web::takeFailure("Initialize")) {
        return false;
    }
    _handle = Handle::create();
    return _handle != nullptr;
}

namespace {

const char* nameOf(KRCURL_OPTION_TYPE option) {
    switch (option) {
        case KRCURL_OPTION_VERBOSE:
            return "VERBOSE";
        case KRCURL_OPTION_POST:
            return "POST";
        case KRCURL_OPTION_HTTPGET:
            return "HTTPGET";
        case KRCURL_OPTION_POSTFIELDSIZE:
            return "POSTFIELDSIZE";
        case KRCURL_OPTION_FOLLOWLOCATION:
            return "FOLLOWLOCATION";
        case KRCURL_OPTION_TIMEOUT:
            return "TIMEOUT";
        case KRCURL_OPTION_CUSTOMREQUEST:
            return "CUSTOMREQUEST";
        case KRCURL_OPTION_URL:
            return "URL";
        case KRCURL_OPTION_POSTFIELDS:
            return "POSTFIELDS";
        case KRCURL_OPTION_COPYPOSTFIELDS:
            return "COPYPOSTFIELDS";
        case KRCURL_OPTION_HTTPHEADER:
            return "HTTPHEADER";
        case KRCURL_OPTION_WRITEFUNCTION:
            return "WRITEFUNCTION";
        case KRCURL_OPTION_HEADERFUNCTION:
            return "HEADERFUNCTION";
        case KRCURL_OPTION_DEBUGFUNCTION:
            return "DEBUGFUNCTION";
        case KRCURL_OPTION_WRITEDATA:
            return "WRITEDATA";
        case KRCURL_OPTION_HEADERDATA:
            return "HEADERDATA";
        case KRCURL_OPTION_DEBUGDATA:
            return "DEBUGDATA";
    }
    return "";
}

}  // namespace

bool KRCurlEasy::setOption(KRCURL_OPTION_TYPE option, const std::string& value) {
    return _handle && !web::takeFailure(nameOf(option)) && _handle->set(option, value);
}

bool KRCurlEasy::setOption(KRCURL_OPTION_TYPE option, const long& value) {
    return _handle && !web::takeFailure(nameOf(option)) && _handle->set(option, value);
}

bool KRCurlEasy::setOption(KRCURL_OPTION_TYPE option, const std::list<std::string>& value) {
    return _handle && !web::takeFailure(nameOf(option)) && _handle->set(option, value);
}

bool KRCurlEasy::setOption(KRCURL_OPTION_TYPE option, Callback callback) {
    return _handle && !web::takeFailure(nameOf(option)) && _handle->set(option, callback);
}

bool KRCurlEasy::setOption(KRCURL_OPTION_TYPE option, DebugCallback callback) {
    return _handle && !web::takeFailure(nameOf(option)) && _handle->set(option, callback);
}

bool KRCurlEasy::setOption(KRCURL_OPTION_TYPE option, void* userData) {
    return _handle && !web::takeFailure(nameOf(option)) && _handle->set(option, userData);
}

bool KRCurlEasy::send() {
    return _handle && !web::takeFailure("send") && _handle->send();
}

bool KRCurlEasy::getInfo(KRCURL_INFO_TYPE info, long* value) {
    return _handle && !web::takeFailure("getInfo") && info == KRCURL_INFO_RESPONSE_CODE && value != nullptr &&
           _handle->responseCode(*value);
}

void KRCurlEasy::reset() {
    if (_handle) {
        _handle->reset();
    }
}

}  // namespace KRCurl
