#include "simulator/Fault.h"

#include <utility>

namespace simulator {

Fault Fault::fail(int code) {
    Fault fault;
    fault.kind = Kind::Fail;
    fault.code = code;
    return fault;
}

Fault Fault::answer(int code) {
    Fault fault;
    fault.kind = Kind::Answer;
    fault.code = code;
    return fault;
}

Fault Fault::say(std::string text) {
    Fault fault;
    fault.kind = Kind::Say;
    fault.text = std::move(text);
    return fault;
}

Fault Fault::late(std::chrono::milliseconds delay) {
    Fault fault;
    fault.kind = Kind::Late;
    fault.delay = delay;
    return fault;
}

Fault Fault::never() {
    Fault fault;
    fault.kind = Kind::Never;
    return fault;
}

Fault Fault::twice() {
    Fault fault;
    fault.kind = Kind::Twice;
    return fault;
}

Fault Fault::null() {
    Fault fault;
    fault.kind = Kind::Null;
    return fault;
}

Fault Fault::miscount() {
    Fault fault;
    fault.kind = Kind::Miscount;
    return fault;
}

Fault Fault::times(int calls) const {
    Fault fault = *this;
    fault.remaining = calls;
    return fault;
}

Fault Fault::after(int calls) const {
    Fault fault = *this;
    fault.skip = calls;
    return fault;
}

}  // namespace simulator
