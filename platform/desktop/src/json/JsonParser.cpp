#include "json/JsonParser.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <utility>

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/monotonic_resource.hpp>
#include <boost/json/value_stack.hpp>

namespace homeloom::desktop {

namespace {

namespace bj = boost::json;

constexpr std::size_t MAX_DEPTH = 64;
// The parser's working space; nearly every document of this system needs no more.
constexpr std::size_t STACK_SPACE = 4096;
// Values of most documents fit in here, and with it the whole document in what malloc keeps at hand for each thread,
// which ends at 1,032 bytes.
constexpr std::size_t FIRST_BLOCK = 880;
constexpr std::size_t MAX_BLOCK = 64 * 1024;

// The library's own number reading is exact only for few digits, and a number that is off by its last digit would be
// printed with seventeen of them.
double exactDouble(double fast, bj::string_view text) {
    constexpr std::size_t EXACT_CHARACTERS = 16;  // a point and 15 digits
    if (text.size() <= EXACT_CHARACTERS && text.find_first_of("eE") == bj::string_view::npos) {
        return fast;
    }
    double exact = fast;
    std::from_chars(text.data(), text.data() + text.size(), exact);
    return exact;  // left alone when out of range: infinite or 0, as the library has it
}

class DocumentHandler {
public:
    static constexpr std::size_t max_object_size = bj::object::max_size();
    static constexpr std::size_t max_array_size = bj::array::max_size();
    static constexpr std::size_t max_key_size = bj::string::max_size();
    static constexpr std::size_t max_string_size = bj::string::max_size();

    explicit DocumentHandler(bj::storage_ptr storage) : _stack({}, _space, sizeof _space) {
        _stack.reset(std::move(storage));
    }

    bj::value release() { return _stack.release(); }

    bool on_document_begin(bj::error_code&) { return true; }
    bool on_document_end(bj::error_code&) { return true; }
    bool on_object_begin(bj::error_code&) { return true; }
    bool on_object_end(std::size_t count, bj::error_code&) {
        _stack.push_object(count);
        return true;
    }
    bool on_array_begin(bj::error_code&) { return true; }
    bool on_array_end(std::size_t count, bj::error_code&) {
        _stack.push_array(count);
        return true;
    }
    bool on_key_part(bj::string_view text, std::size_t, bj::error_code&) {
        _stack.push_chars(text);
        return true;
    }
    bool on_key(bj::string_view text, std::size_t, bj::error_code&) {
        _stack.push_key(text);
        return true;
    }
    bool on_string_part(bj::string_view text, std::size_t, bj::error_code&) {
        _stack.push_chars(text);
        return true;
    }
    bool on_string(bj::string_view text, std::size_t, bj::error_code&) {
        _stack.push_string(text);
        return true;
    }
    bool on_number_part(bj::string_view, bj::error_code&) { return true; }
    bool on_int64(std::int64_t value, bj::string_view, bj::error_code&) {
        _stack.push_int64(value);
        return true;
    }
    bool on_uint64(std::uint64_t value, bj::string_view, bj::error_code&) {
        _stack.push_uint64(value);
        return true;
    }
    bool on_double(double value, bj::string_view text, bj::error_code&) {
        _stack.push_double(exactDouble(value, text));
        return true;
    }
    bool on_bool(bool value, bj::error_code&) {
        _stack.push_bool(value);
        return true;
    }
    bool on_null(bj::error_code&) {
        _stack.push_null();
        return true;
    }
    bool on_comment_part(bj::string_view, bj::error_code&) { return true; }
    bool on_comment(bj::string_view, bj::error_code&) { return true; }

private:
    unsigned char _space[STACK_SPACE];
    bj::value_stack _stack;
};

// A parsed document is only read, so one monotonic resource serves all its values: freeing it walks no tree.
struct Document {
    bj::monotonic_resource resource;
    std::optional<bj::value> root;  // a value's storage is settled when it is made

protected:
    explicit Document(std::size_t blockSize) : resource(blockSize) {}
    Document(unsigned char* block, std::size_t size) : resource(block, size, bj::storage_ptr()) {}
};

struct SmallDocument : Document {
    SmallDocument() : Document(block, sizeof block) {}

    alignas(std::max_align_t) unsigned char block[FIRST_BLOCK];
};

struct LargeDocument : Document {
    explicit LargeDocument(std::size_t blockSize) : Document(blockSize) {}
};

// A document's values take about as much room as its text, small ones up to three times as much.
std::shared_ptr<Document> makeDocument(std::size_t textSize) {
    if (textSize * 3 <= FIRST_BLOCK) {
        return std::make_shared<SmallDocument>();
    }
    return std::make_shared<LargeDocument>(std::min(textSize, MAX_BLOCK));
}

bj::parse_options options() {
    bj::parse_options options;
    options.max_depth = MAX_DEPTH;
    return options;
}

}  // namespace

std::shared_ptr<bj::value> parseJson(std::string_view text) {
    const std::shared_ptr<Document> document = makeDocument(text.size());
    bj::basic_parser<DocumentHandler> parser(options(), bj::storage_ptr(&document->resource));
    bj::error_code error;
    const std::size_t consumed = parser.write_some(false, text.data(), text.size(), error);
    if (error || consumed != text.size()) {
        return nullptr;
    }
    bj::value& root = document->root.emplace(parser.handler().release());
    return {document, &root};
}

}  // namespace homeloom::desktop
