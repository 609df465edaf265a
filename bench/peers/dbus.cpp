// A D-Bus signal for each update, from one connection to another through the session's bus: what a desktop's services
// would tell each other. Nothing is evaluated.
#include <systemd/sd-bus.h>

#include <cstdlib>
#include <cstring>

#include "update.h"

namespace {

constexpr char kPath[] = "/washer";
constexpr char kInterface[] = "org.example.Device";
constexpr char kMember[] = "Updated";

void check(int result, const char* what) {
    if (result < 0) {
        std::fprintf(stderr, "%s: %s\n", what, std::strerror(-result));
        std::exit(1);
    }
}

sd_bus* connect() {
    sd_bus* bus = nullptr;
    check(sd_bus_open_user(&bus), "the session's bus");
    return bus;
}

int count(sd_bus_message* message, void* arrived, sd_bus_error*) {
    const char* text = nullptr;
    check(sd_bus_message_read(message, "s", &text), "the signal's text");
    ++*static_cast<int*>(arrived);
    return 0;
}

void process(sd_bus* bus) {
    int result = 0;
    while ((result = sd_bus_process(bus, nullptr)) > 0) {
        // until nothing is left to be done
    }
    check(result, "the bus");
}

}  // namespace

int main() {
    sd_bus* const sender = connect();
    sd_bus* const receiver = connect();
    int arrived = 0;
    check(sd_bus_match_signal(receiver, nullptr, nullptr, kPath, kInterface, kMember, count, &arrived), "the match");
    peers::measure(
        [&](const char* text) {
            check(sd_bus_emit_signal(sender, kPath, kInterface, kMember, "s", text), "the signal");
        },
        [&] {
            arrived = 0;
            while (arrived == 0) {
                process(sender);
                process(receiver);
                if (arrived == 0) {
                    check(sd_bus_wait(receiver, 1000), "waiting");
                }
            }
            return arrived;
        });
    sd_bus_unref(receiver);
    sd_bus_unref(sender);
}
