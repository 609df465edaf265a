// A line that somebody types at the desk TV.

#include "CommandError.h"
#include "Words.h"
#include "support/Input.h"

using namespace homeloom::tv;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Words words;
    try {
        words = splitWords(fuzz::text(data, size));
    } catch (const CommandError&) {
        return 0;
    }
    for (const auto& word : words) {
        fuzz::require(splitWords(quoteWord(word)) == Words{word}, "a quoted word is read as it was");
    }
    return 0;
}
