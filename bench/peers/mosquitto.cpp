// An MQTT message of QoS 0 for each update, from one client to another through the broker: what a home's bridges would
// tell each other. Nothing is evaluated. The broker's port comes as argument.
#include <mosquitto.h>

#include <cstdlib>
#include <cstring>

#include "update.h"

namespace {

constexpr char kTopic[] = "home/washer";
constexpr int kKeepAliveSeconds = 60;

struct Inbox {
    bool isSubscribed = false;
    int arrived = 0;
};

void check(int result, const char* what) {
    if (result != MOSQ_ERR_SUCCESS) {
        std::fprintf(stderr, "%s: %s\n", what, mosquitto_strerror(result));
        std::exit(1);
    }
}

mosquitto* connect(int port, Inbox* inbox) {
    mosquitto* const client = mosquitto_new(nullptr, true, inbox);
    check(client == nullptr ? MOSQ_ERR_NOMEM : MOSQ_ERR_SUCCESS, "a client");
    check(mosquitto_int_option(client, MOSQ_OPT_TCP_NODELAY, 1), "TCP_NODELAY");
    check(mosquitto_connect(client, "127.0.0.1", port, kKeepAliveSeconds), "the broker");
    return client;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: mosquitto PORT\n", stderr);
        return 2;
    }
    mosquitto_lib_init();
    Inbox inbox;
    const int port = std::atoi(argv[1]);
    mosquitto* const sender = connect(port, nullptr);
    mosquitto* const receiver = connect(port, &inbox);
    mosquitto_subscribe_callback_set(
        receiver, [](mosquitto*, void* data, int, int, const int*) { static_cast<Inbox*>(data)->isSubscribed = true; });
    mosquitto_message_callback_set(
        receiver, [](mosquitto*, void* data, const mosquitto_message*) { ++static_cast<Inbox*>(data)->arrived; });
    check(mosquitto_subscribe(receiver, nullptr, kTopic, 0), "the subscription");
    while (!inbox.isSubscribed) {
        check(mosquitto_loop(receiver, 10, 1), "the receiver");
    }
    peers::measure(
        [&](const char* text) {
            check(mosquitto_publish(sender, nullptr, kTopic, static_cast<int>(std::strlen(text)), text, 0, false),
                  "the message");
        },
        [&] {
            inbox.arrived = 0;
            while (inbox.arrived == 0) {
                check(mosquitto_loop(sender, 0, peers::kOnTheWay), "the sender");
                check(mosquitto_loop(receiver, 1, peers::kOnTheWay), "the receiver");
            }
            return inbox.arrived;
        });
    mosquitto_destroy(receiver);
    mosquitto_destroy(sender);
    mosquitto_lib_cleanup();
}
