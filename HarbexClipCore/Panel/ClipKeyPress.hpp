#pragma once

#include <string>
#include <utility>

namespace harbex {

// One key press that reached the panel, as the platform layer describes it: the key and the
// modifiers held with it. A value.
struct ClipKeyPress {
    // The key. `character` carries the text the key gives without modifiers ("c", "1", ","),
    // which is what shortcuts are matched against; the rest are named keys.
    struct Name {
        enum class Kind {
            character,
            up,
            down,
            left,
            right,
            escape,
            returnKey,
            enter,
            deleteKey,  // delete backward (Backspace)
            forwardDelete,
            tab,
            space,
        };

        Kind kind = Kind::escape;
        std::string text;  // only for `character`

        Name(Kind kind) : kind(kind) {}  // NOLINT: a named key is its kind
        static Name character(std::string text) {
            Name name(Kind::character);
            name.text = std::move(text);
            return name;
        }

        friend bool operator==(const Name&, const Name&) = default;
    };

    Name name = Name::Kind::escape;
    bool command = false;
    bool shift = false;
    bool option = false;
    bool control = false;

    friend bool operator==(const ClipKeyPress&, const ClipKeyPress&) = default;
};

}  // namespace harbex
