#ifndef HOMELOOM_TV_DEVICENAMES_H
#define HOMELOOM_TV_DEVICENAMES_H

#include <string>
#include <vector>

namespace homeloom::tv {

/// Something that people name: a device, a room, a location.
struct Named {
    std::string id;
    std::vector<std::string> names;  // nick first; may be empty texts
};

/// Finds things by what people call them: by id, or by one of their names, in any case.
class NameLookup {
public:
    /// `kind` is the word for messages: "device".
    NameLookup(std::string kind, std::vector<Named> things);

    /// The id of the thing of that name. An id wins over names. Throws CommandError, which tells what is near, when
    /// there is none or more than one.
    std::string find(const std::string& name) const;

    /// The longest row of words from `at` on that is a name; `at` moves behind it. Names of several words need no
    /// quotes. Throws as find() does, for the single word.
    std::string take(const std::vector<std::string>& words, std::size_t& at) const;

    /// The same for the name of which the row consists as a whole.
    std::string takeAll(const std::vector<std::string>& words, std::size_t at) const;

private:
    std::vector<const Named*> matches(const std::string& name) const;
    std::vector<std::string> near(const std::string& name) const;

    std::string _kind;
    std::vector<Named> _things;
};

/// How many characters must be changed, added, dropped or swapped with their neighbour to make one of the other.
int editDistance(const std::string& a, const std::string& b);

/// Those of `candidates` that a slip of the keyboard, or a part of the name, could have meant: the nearest first.
std::vector<std::string> nearTo(const std::string& text, const std::vector<std::string>& candidates);

/// "; near: a, b", or nothing.
std::string nearHint(const std::vector<std::string>& near);

}  // namespace homeloom::tv

#endif
