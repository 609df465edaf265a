#ifndef HOMELOOM_TESTS_DOOR_PROGRAM_H
#define HOMELOOM_TESTS_DOOR_PROGRAM_H

#include <sys/types.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <httplib.h>

/// A desk TV with its door open, and nobody at the terminal.
class Program {
public:
    explicit Program(const std::vector<std::string>& arguments = {});
    ~Program();

    int port() const { return _port; }
    httplib::Client client() const;
    /// What the answer to a command's body says.
    VMFramework::json::JsonValue post(const std::string& body, const std::string& type = "application/json") const;

    /// Ends it by that signal. Returns its exit status, or -1.
    int end(int signal);

private:
    pid_t _process = -1;
    FILE* _output = nullptr;
    int _port = 0;
};

/// One message of the stream.
struct Event {
    std::string id;
    std::string type;
    VMFramework::json::JsonValue data;
};
/// Takes the first message off the text; false if there is no whole one. A comment has no type.
bool takeEvent(std::string& text, Event& event);

/// What a client hears.
class Listener {
public:
    explicit Listener(const Program& program, const std::string& lastId = "");
    ~Listener();

    /// The next event, of that type if one is told; those before it are gone. Of no type when the stream ends first.
    Event next(const std::string& type = "");

private:
    bool take(const char* data, std::size_t size);

    std::mutex _mutex;
    std::condition_variable _came;
    std::string _text;
    bool _ended = false;
    httplib::Client _client;
    std::thread _thread;
};

#endif
