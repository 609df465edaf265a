#include "simulator/CloudFault.h"

namespace simulator {

namespace {

CloudFault faultOf(CloudFault::Kind kind) {
    CloudFault fault;
    fault.kind = kind;
    return fault;
}

}  // namespace

CloudFault CloudFault::status(int code) {
    CloudFault fault = faultOf(Kind::Status);
    fault.code = code;
    return fault;
}

CloudFault CloudFault::body(const std::string& text) {
    CloudFault fault = faultOf(Kind::Body);
    fault.text = text;
    return fault;
}

CloudFault CloudFault::header(const std::string& line) {
    CloudFault fault = faultOf(Kind::Header);
    fault.text = line;
    return fault;
}

CloudFault CloudFault::late(std::chrono::milliseconds delay) {
    CloudFault fault = faultOf(Kind::Late);
    fault.delay = delay;
    return fault;
}

CloudFault CloudFault::never() {
    return faultOf(Kind::Never);
}

CloudFault CloudFault::cut() {
    return faultOf(Kind::Cut);
}

CloudFault CloudFault::huge() {
    return faultOf(Kind::Huge);
}

CloudFault CloudFault::endless() {
    return faultOf(Kind::Endless);
}

CloudFault CloudFault::redirectLoop() {
    return faultOf(Kind::RedirectLoop);
}

CloudFault CloudFault::chunks() {
    return faultOf(Kind::Chunks);
}

CloudFault CloudFault::times(int requests) const {
    CloudFault fault = *this;
    fault.remaining = requests;
    return fault;
}

CloudFault CloudFault::after(int requests) const {
    CloudFault fault = *this;
    fault.skip = requests;
    return fault;
}

CloudFault CloudFault::only(const std::string& part) const {
    CloudFault fault = *this;
    fault.filter = part;
    return fault;
}

}  // namespace simulator
