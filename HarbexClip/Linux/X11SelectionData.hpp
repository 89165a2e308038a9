#pragma once

// The pure half of the X11 adapters: decoding what other clients put in selections and window
// properties. No xcb here, so the fuzzers can run it on arbitrary bytes.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex::x11data {

// A TARGETS reply: 32-bit atoms in the server's byte order, None and repeats left out (owners
// repeat targets now and then; the first stays). Nothing when the length is not whole atoms.
std::optional<std::vector<std::uint32_t>> targetAtoms(const Bytes& reply);

// UTF-16 with a byte-order mark (or, when `assumeLittleEndian`, without one, as Firefox writes
// text/x-moz-url) to UTF-8, stopping at a NUL; other data is returned as it is.
std::string decodeMaybeUtf16(const Bytes& data, bool assumeLittleEndian);

// STRING is Latin-1.
std::string latin1ToUtf8(const Bytes& data);
// Characters outside Latin-1 become '?'.
Bytes utf8ToLatin1(std::string_view text);

// The file URLs of a text/uri-list or an x-special/gnome-copied-files reply ("copy" or "cut",
// then one URL a line). Lines may end in LF, CRLF or NUL.
std::vector<std::string> fileUrls(std::string_view target, const Bytes& data);

// text/x-moz-url: the URL, a line break, the title; often UTF-16 without a mark.
struct MozUrl {
    std::optional<std::string> url;
    std::optional<std::string> title;
};
MozUrl mozUrl(const Bytes& data);

// INCR: a reply announced as incremental arrives as chunks, ended by an empty one.
class IncrementalReply {
public:
    enum class Step { more, done, tooLarge };

    // `announced` is the INCR property (a lower bound of the size, 32 bits): over `limit`, the
    // reply is refused before any chunk comes.
    IncrementalReply(const Bytes& announced, std::size_t limit);
    // Where the reply stands; after `done` or `tooLarge` further chunks are ignored.
    Step state() const { return state_; }
    Step add(const Bytes& chunk);
    Bytes take() { return std::move(data_); }

private:
    std::size_t limit_;
    Bytes data_;
    Step state_ = Step::more;
};

// Window properties read from other clients.
// _NET_WM_PID (CARDINAL, 32 bits): nothing when absent, zero or out of a pid's range.
std::optional<std::int32_t> windowPid(const std::vector<std::uint32_t>& values);
// WM_CLASS: two NUL-terminated strings, instance then class; missing parts are empty.
std::pair<std::string, std::string> windowClass(std::string_view value);
// _GTK_APPLICATION_ID: a UTF-8 string, possibly NUL-terminated; empty when absent.
std::string gtkApplicationId(std::string_view value);

}  // namespace harbex::x11data
