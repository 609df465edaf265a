#ifndef HOMELOOM_RECORDER_BLANKING_H
#define HOMELOOM_RECORDER_BLANKING_H

#include <map>
#include <string>

#include "recorder/Forms.h"

namespace recorder {

/// Takes out of texts what tells a stranger something about a home: the names that people gave, who they are, tokens
/// and passwords. In their place stands "<name 1>", "<account 1>" or "<token 1>", the same for the same text, so that a
/// tape plays as the original did. Ids of devices, rooms and the like stay. Not to be used by two threads at a time.
class Blanking {
public:
    /// The text as it may be shown. Knows names and the rest by their places, and by their keys in JSON documents; once
    /// seen, accounts and tokens are found inside any text, and names inside sentences.
    std::string shown(const Place& place, const std::string& text);

    enum class What { Nothing, Name, Account, Token };

private:
    std::string blank(What what, const std::string& text);
    std::string shownDocument(const Place& place, const std::string& document);
    std::string shownInside(const std::string& text) const;

    std::map<std::string, std::string> _names;
    std::map<std::string, std::string> _secrets;
    int _accounts = 0;
    int _tokens = 0;
};

/// The text without the numbers of its blanks, so that texts of different tapes compare.
std::string withoutNumbers(const std::string& text);

}  // namespace recorder

#endif
