// Selection replies from other X clients through the X11 adapter's decoders: they must never
// crash, text must come out as valid UTF-8, file URLs must hold no line ends or NULs, INCR
// reassembly must keep to its limit and give back exactly the chunks it took, and STRING must
// survive a Latin-1 round trip.
//
// Input: the first byte picks the decoder, the rest is the reply; for INCR the rest is split
// into chunks at every 0xFF byte.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "HarbexClip/Linux/X11SelectionData.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace {

using namespace harbex;

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "X11SelectionFuzz: %s\n", what);
    std::abort();
}

void incremental(const Bytes& input) {
    const std::size_t limit = input.empty() ? 0 : input[0] * 7u;
    x11data::IncrementalReply reply(
        Bytes(input.begin(), input.begin() + std::min<std::size_t>(4, input.size())), limit);
    Bytes expected;
    bool over = reply.state() == x11data::IncrementalReply::Step::tooLarge;
    Bytes chunk;
    auto step = reply.state();
    for (std::size_t i = 4; i <= input.size() && step == x11data::IncrementalReply::Step::more;
         ++i) {
        if (i < input.size() && input[i] != 0xFF) {
            chunk.push_back(input[i]);
            continue;
        }
        if (!over) {
            if (expected.size() + chunk.size() > limit) over = true;
            if (!over) expected.insert(expected.end(), chunk.begin(), chunk.end());
        }
        step = reply.add(chunk);
        chunk.clear();
    }
    require((step == x11data::IncrementalReply::Step::tooLarge) == over, "limit not kept");
    if (step == x11data::IncrementalReply::Step::done)
        require(reply.take() == expected, "lost bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const Bytes reply(data + 1, data + size);
    switch (data[0] % 6) {
        case 0: {
            const auto atoms = x11data::targetAtoms(reply);
            require(atoms.has_value() == (reply.size() % 4 == 0), "whole atoms misjudged");
            if (atoms) {
                for (std::size_t i = 0; i < atoms->size(); ++i) {
                    require((*atoms)[i] != 0, "None kept");
                    for (std::size_t j = 0; j < i; ++j)
                        require((*atoms)[i] != (*atoms)[j], "repeat kept");
                }
            }
            break;
        }
        case 1: {
            const bool assumeLittle = data[0] & 0x80;
            const bool marked = reply.size() >= 2 && ((reply[0] == 0xFF && reply[1] == 0xFE) ||
                                                      (reply[0] == 0xFE && reply[1] == 0xFF));
            const bool unmarked =
                assumeLittle && reply.size() >= 2 && reply.size() % 2 == 0 && reply[1] == 0;
            const std::string text = x11data::decodeMaybeUtf16(reply, assumeLittle);
            if (marked || unmarked) require(isValidUtf8(text), "UTF-16 gave invalid UTF-8");
            break;
        }
        case 2: {
            const std::string text = x11data::latin1ToUtf8(reply);
            require(isValidUtf8(text), "Latin-1 gave invalid UTF-8");
            require(x11data::utf8ToLatin1(text) == reply, "Latin-1 round trip");
            break;
        }
        case 3:
            for (const char* target : {"text/uri-list", "x-special/gnome-copied-files"}) {
                for (const std::string& url : x11data::fileUrls(target, reply))
                    require(!url.empty() && url.find_first_of(std::string_view("\r\n\0", 3)) ==
                                                std::string::npos,
                            "line end kept in a URL");
            }
            break;
        case 4: {
            const auto moz = x11data::mozUrl(reply);
            if (moz.url) require(moz.url->find('\n') == std::string::npos, "URL holds a line");
            break;
        }
        case 5: incremental(reply); break;
    }
    return 0;
}
