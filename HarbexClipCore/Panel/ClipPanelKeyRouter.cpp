#include "HarbexClipCore/Panel/ClipPanelKeyRouter.hpp"

#include <string_view>

namespace harbex {

namespace {

using Kind = ClipPanelKey::Kind;
using Route = ClipPanelKeyRoute;
using NameKind = ClipKeyPress::Name::Kind;

// The single ASCII character a key gives, lower-cased; 0 for anything else. Shift may have
// turned "z" into "Z"; the shortcut is the same key.
char keyCharacter(std::string_view text) {
    if (text.size() != 1) return 0;
    const char c = text.front();
    if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
    return c;
}

// ⌘ with a character key, Control not held.
Route routeCommandCharacter(const ClipKeyPress& press, const ClipPanelKeyRouter::Context& context) {
    const char c = keyCharacter(press.name.text);
    if (!press.shift && !press.option) {
        switch (c) {
            case 'q':
            case 'w':
            case 'h':
            case 'm': return Route::close();
            case ',': return Route::settings();
            default: break;
        }
    }
    if (c >= '1' && c <= '9') return Route::panel(ClipPanelKey::commandNumber(c - '0'));
    switch (c) {
        case 'k': return Route::panel(Kind::commandK);
        case 'p': return Route::panel(Kind::commandP);
        case 'o': return Route::panel(Kind::commandO);
        case 'y': return Route::panel(Kind::commandY);
        case 's': return Route::panel(Kind::commandS);
        case 'c':
            return context.fieldEmpty ? Route::panel(Kind::commandC)
                                      : Route::edit(ClipEditCommand::copy);
        case 'x': return Route::edit(ClipEditCommand::cut);
        case 'v': return Route::edit(ClipEditCommand::paste);
        case 'a': return Route::edit(ClipEditCommand::selectAll);
        case 'z': return Route::edit(press.shift ? ClipEditCommand::redo : ClipEditCommand::undo);
        default: return Route::swallow();
    }
}

Route routeNamed(const ClipKeyPress& press, const ClipPanelKeyRouter::Context& context) {
    switch (press.name.kind) {
        case NameKind::returnKey:
        case NameKind::enter:
            if (press.command) return Route::panel(Kind::commandReturn);
            return Route::panel(press.shift ? Kind::shiftReturn : Kind::returnKey);
        case NameKind::up: return Route::panel(press.shift ? Kind::shiftUp : Kind::up);
        case NameKind::down: return Route::panel(press.shift ? Kind::shiftDown : Kind::down);
        case NameKind::escape: return Route::panel(Kind::escape);
        case NameKind::space:
            if (press.command) return Route::swallow();
            return context.fieldEmpty ? Route::panel(Kind::space) : Route::field();
        case NameKind::tab: return Route::panel(press.shift ? Kind::shiftTab : Kind::tab);
        case NameKind::deleteKey:
            if (press.command) return Route::panel(Kind::commandDelete);
            // Option and Control delete a word or a line: the field's own editing.
            if (press.option || press.control) return Route::field();
            return context.fieldEmpty ? Route::panel(Kind::deleteOnEmpty) : Route::field();
        case NameKind::left:
        case NameKind::right:
        case NameKind::forwardDelete:
        case NameKind::character: return Route::field();
    }
    return Route::field();
}

}  // namespace

ClipPanelKeyRoute ClipPanelKeyRouter::route(const ClipKeyPress& press, const Context& context) {
    const NameKind name = press.name.kind;
    if (context.quickLookOpen && !press.command &&
        (name == NameKind::space || name == NameKind::escape)) {
        return Route::closeQuickLook();
    }
    // An input method owns every key while it composes, Return and Escape included.
    if (context.composing && !press.command) return Route::field();

    if (name == NameKind::character) {
        if (press.command && !press.control) return routeCommandCharacter(press, context);
        // ⌃⌘ chords are nobody's in the panel: swallowed rather than typed.
        if (press.command) return Route::swallow();
        return Route::field();
    }
    return routeNamed(press, context);
}

}  // namespace harbex
