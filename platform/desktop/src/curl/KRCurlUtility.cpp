#include <KRCurl/KRCurlUtility.h>

#include <string_view>

namespace KRCurl {

namespace {

void appendEncoded(std::string& out, std::string_view text) {
    constexpr char kHexDigits[] = "0123456789ABCDEF";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isLetterOrDigit =
            (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
        if (isLetterOrDigit || byte == '-' || byte == '.' || byte == '_' || byte == '~') {
            out += c;
        } else {
            out += '%';
            out += kHexDigits[byte >> 4];
            out += kHexDigits[byte & 15];
        }
    }
}

}  // namespace

void KRCurlUtility::makeQueryString(std::string& query, std::string key, std::string value) {
    query += query.find('?') == std::string::npos ? '?' : '&';
    appendEncoded(query, key);
    query += '=';
    appendEncoded(query, value);
}

}  // namespace KRCurl
