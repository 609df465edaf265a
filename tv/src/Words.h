#ifndef HOMELOOM_TV_WORDS_H
#define HOMELOOM_TV_WORDS_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace homeloom::tv {

using Words = std::vector<std::string>;

/// Cuts a command line into words.
///
/// At the start of a word, and after its first "=", a text may stand in quotes ("..." with \" and \\, '...' as it is),
/// and a JSON object or array runs to its own end, blanks and quotes included:
///
///     request hl_create_favorite location_id=home favorite_info={"memberId": "washer"}
///
/// Throws CommandError for quotes or brackets that never end.
Words splitWords(std::string_view line);

/// The word as splitWords() would need it to see.
std::string quoteWord(const std::string& word);

/// "key=value" as its two parts; none without a key or an equals sign.
std::optional<std::pair<std::string, std::string>> splitAssignment(const std::string& word);

std::string joinWords(const Words& words, std::size_t from = 0);

std::string lowered(std::string_view text);

}  // namespace homeloom::tv

#endif
