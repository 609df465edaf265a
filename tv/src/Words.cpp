#include "Words.h"

#include <algorithm>
#include <cctype>

#include "CommandError.h"

namespace homeloom::tv {

namespace {

bool isBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

class Splitter {
public:
    explicit Splitter(std::string_view line) : _line(line) {}

    Words split() {
        Words words;
        while (skipBlanks()) {
            words.push_back(takeWord());
        }
        return words;
    }

private:
    bool skipBlanks() {
        while (_at < _line.size() && isBlank(_line[_at])) {
            ++_at;
        }
        return _at < _line.size();
    }

    std::string takeWord() {
        std::string word;
        bool atValue = true;
        bool hasEquals = false;
        while (_at < _line.size() && !isBlank(_line[_at])) {
            const char c = _line[_at];
            if (atValue && (c == '"' || c == '\'')) {
                word += takeQuoted(c);
            } else if (atValue && (c == '{' || c == '[')) {
                word += takeJson();
            } else {
                word += c;
                ++_at;
                atValue = c == '=' && !hasEquals;
                hasEquals = hasEquals || c == '=';
                continue;
            }
            atValue = false;
        }
        return word;
    }

    std::string takeQuoted(char quote) {
        std::string text;
        for (++_at; _at < _line.size(); ++_at) {
            char c = _line[_at];
            if (c == quote) {
                ++_at;
                return text;
            }
            const bool escapes = quote == '"' && c == '\\' && _at + 1 < _line.size();
            if (escapes && (_line[_at + 1] == '"' || _line[_at + 1] == '\\')) {
                c = _line[++_at];
            }
            text += c;
        }
        throw CommandError(std::string("the quote ") + quote + " has no end");
    }

    std::string takeJson() {
        const std::size_t start = _at;
        int depth = 0;
        bool inText = false;
        for (; _at < _line.size(); ++_at) {
            const char c = _line[_at];
            if (inText) {
                if (c == '\\') {
                    ++_at;
                } else if (c == '"') {
                    inText = false;
                }
                continue;
            }
            inText = c == '"';
            depth += c == '{' || c == '[' ? 1 : 0;
            depth -= c == '}' || c == ']' ? 1 : 0;
            if (depth == 0) {
                ++_at;
                return std::string(_line.substr(start, _at - start));
            }
        }
        throw CommandError(std::string("the JSON that begins with ") + _line[start] + " has no end");
    }

    std::string_view _line;
    std::size_t _at = 0;
};

}  // namespace

Words splitWords(std::string_view line) {
    return Splitter(line).split();
}

std::string quoteWord(const std::string& word) {
    const bool plain = !word.empty() && std::none_of(word.begin(), word.end(), [](char c) {
        return isBlank(c) || c == '"' || c == '\'' || c == '{' || c == '[';
    });
    if (plain) {
        return word;
    }
    std::string quoted = "\"";
    for (const char c : word) {
        quoted += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    return quoted + '"';
}

std::optional<std::pair<std::string, std::string>> splitAssignment(const std::string& word) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos || equals == 0) {
        return std::nullopt;
    }
    return std::make_pair(word.substr(0, equals), word.substr(equals + 1));
}

std::string joinWords(const Words& words, std::size_t from) {
    std::string text;
    for (std::size_t i = from; i < words.size(); ++i) {
        text += (i > from ? " " : "") + words[i];
    }
    return text;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

}  // namespace homeloom::tv
