#include "door/EventStream.h"

#include <gtest/gtest.h>

#include "Program.h"

using namespace homeloom::tv;
using namespace std::chrono_literals;

namespace {

constexpr std::size_t kKept = 4;

/// One that reads when it likes.
class Reader {
public:
    explicit Reader(EventStream& stream) : _stream(stream) {}
    Reader(EventStream& stream, const std::string& lastId) : _stream(stream), _position(std::stoull(lastId)) {}

    Event next() {
        Event event;
        while (!takeEvent(_text, event)) {
            _text += _stream.next(_position, 10s).value();
        }
        return event;
    }

private:
    EventStream& _stream;
    EventStream::Position _position;
    std::string _text;
};

void publish(EventStream& stream, int from, int count) {
    for (int i = from; i < from + count; ++i) {
        stream.publish("command", std::to_string(i));
    }
    stream.home();  // they have their places now
}

}  // namespace

TEST(EventStreamTest, TellsWhoIsTooSlowThatItLostSome) {
    EventStream stream({kKept, 1 << 20});
    Reader fast(stream);
    Reader slow(stream);
    EXPECT_EQ(fast.next().type, "hello");
    EXPECT_EQ(slow.next().type, "hello");
    publish(stream, 0, 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(fast.next().data.asInt(), i);
    }
    publish(stream, 4, 3);
    const Event lost = slow.next();
    EXPECT_EQ(lost.type, "lost");
    EXPECT_EQ(lost.data["lost"].asInt(), 7);
    EXPECT_EQ(slow.next().type, "hello");
    publish(stream, 7, 1);
    EXPECT_EQ(slow.next().data.asInt(), 7);
    for (int i = 4; i < 8; ++i) {
        EXPECT_EQ(fast.next().data.asInt(), i);
    }
}

TEST(EventStreamTest, GoesOnWhereAClientWas) {
    EventStream stream({kKept, 1 << 20});
    const std::string start = Reader(stream).next().id;
    publish(stream, 0, 4);
    Reader back(stream, start);
    const Event first = back.next();
    EXPECT_EQ(first.data.asInt(), 0);
    EXPECT_EQ(std::stoull(first.id), std::stoull(start) + 1);
    // One event more, and the start is out of reach.
    publish(stream, 4, 1);
    EXPECT_EQ(Reader(stream, start).next().type, "lost");
    EXPECT_EQ(Reader(stream, first.id).next().data.asInt(), 1);
    // Numbers of another run mean nothing, whichever they are.
    EventStream other({kKept, 1 << 20});
    publish(other, 0, 8);
    EXPECT_EQ(Reader(other, first.id).next().type, "hello");
    EXPECT_EQ(Reader(other, "0").next().type, "hello");
}

TEST(EventStreamTest, KeepsNoMoreThanItMay) {
    EventStream stream({1000, 4096});
    const std::string start = Reader(stream).next().id;
    stream.publish("command", '"' + std::string(5000, 'x') + '"');
    stream.home();
    EXPECT_EQ(Reader(stream, start).next().type, "command");
    publish(stream, 0, 1);
    EXPECT_EQ(Reader(stream, start).next().type, "lost");
    stream.close();
    EventStream::Position position;
    EXPECT_FALSE(stream.next(position, 10s));
}
