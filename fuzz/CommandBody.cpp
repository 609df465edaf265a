// What a program sends to the door as a command.

#include "door/CommandBody.h"

#include "support/Input.h"

using namespace homeloom::tv;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::text(data, size);
    for (const char* const type : {"application/json", "text/plain"}) {
        try {
            const CommandBody body = readCommandBody(type, text);
            fuzz::require(!body.line.empty(), "a command that is taken is none of blanks");
        } catch (const Refusal& refusal) {
            fuzz::require(refusal.status >= 400 && refusal.status < 500, "a bad body is its sender's fault");
            fuzz::require(*refusal.what() != '\0', "and is told why");
        }
    }
    return 0;
}
