#include "recorder/Forms.h"

#include <cstdio>

namespace recorder {

void appendQuoted(std::string& line, const std::string& text) {
    line += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            line += '\\';
            line += c;
        } else if (c == '\n') {
            line += "\\n";
        } else if (static_cast<unsigned char>(c) < ' ') {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
            line += escaped;
        } else {
            line += c;
        }
    }
    line += '"';
}

}  // namespace recorder
