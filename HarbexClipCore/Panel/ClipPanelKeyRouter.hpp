#pragma once

#include "HarbexClipCore/Panel/ClipKeyPress.hpp"
#include "HarbexClipCore/Panel/ClipPanelKey.hpp"
#include "HarbexClipCore/Panel/ClipPanelKeyRoute.hpp"

namespace harbex {

// Decides where each key press that reaches the panel goes: a panel command, an editing command
// for the search field, typing for the field, or closing, settings, or nothing. Stateless; main
// thread like the panel.
class ClipPanelKeyRouter {
public:
    // What the router needs to know about the panel at the moment of the press.
    struct Context {
        ClipPanelMode mode = ClipPanelMode::browse;
        bool fieldEmpty = true;
        bool composing = false;  // an input method is composing text in the field
        bool quickLookOpen = false;
    };

    // Command chords never type and never reach the application's menus while the panel has the
    // keys: the close keys (⌘Q ⌘W ⌘H ⌘M) close the panel, unknown ones are swallowed. Option and
    // Control chords go to the field, which owns word and line editing. Space opens Quick Look
    // only while the field is empty; with a query it types a space, so multi-word searches work.
    static ClipPanelKeyRoute route(const ClipKeyPress& press, const Context& context);
};

}  // namespace harbex
