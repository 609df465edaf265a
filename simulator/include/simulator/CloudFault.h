#ifndef HOMELOOM_SIMULATOR_CLOUDFAULT_H
#define HOMELOOM_SIMULATOR_CLOUDFAULT_H

#include <chrono>
#include <string>

namespace simulator {

/// How one endpoint of the cloud misbehaves. Made by name, and narrowed by count or by what is asked for:
///
///     cloud.fault("stream", CloudFault::status(500).times(2));
///     cloud.fault("file_links", CloudFault::late(2s).only("shelf-3"));
struct CloudFault {
    enum class Kind { Status, Body, Header, Late, Never, Cut, Huge, Endless, RedirectLoop, Chunks };

    /// Answers with that code, and a body that says so.
    static CloudFault status(int code);
    /// Answers 200 with that body.
    static CloudFault body(const std::string& text);
    /// Answers a redirect whose one header of note is this line: "Location: https://elsewhere.example/".
    static CloudFault header(const std::string& line);
    /// Answers as ever, but later.
    static CloudFault late(std::chrono::milliseconds delay);
    /// Keeps the connection open and says nothing, until a fault is cleared or the cloud stops.
    static CloudFault never();
    /// Closes the connection in the middle of the body.
    static CloudFault cut();
    /// Answers 200 with a body of 32 MB.
    static CloudFault huge();
    /// Answers 200 with a body that trickles in and does not end.
    static CloudFault endless();
    /// Redirects to the very same address.
    static CloudFault redirectLoop();
    /// Answers as ever, but in two chunks in place of one piece.
    static CloudFault chunks();

    /// For that many requests; without it, for good.
    CloudFault times(int requests) const;
    /// Only after that many good requests.
    CloudFault after(int requests) const;
    /// For requests whose target contains the text.
    CloudFault only(const std::string& text) const;

    /// Whether a request lasts for as long as its sender likes to wait.
    bool hasNoEnd() const { return kind == Kind::Never || kind == Kind::Endless; }

    Kind kind = Kind::Status;
    int code = 0;
    std::string text;
    std::chrono::milliseconds delay{0};
    int remaining = -1;  // requests that it still hits; -1: all
    int skip = 0;        // requests that it still lets pass
    std::string filter;  // empty: any target
};

}  // namespace simulator

#endif
