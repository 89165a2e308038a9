#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Pasteboard/PasteboardSnapshot.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

// What X11 targets and Wayland MIME types have in common: one vocabulary of flavour names
// (UTF8_STRING, text/html, text/uri-list, image/png, the markers ...), one reading order and one
// set of flavours per write. The X11 and Wayland pasteboards differ only in how a flavour travels,
// so both read and write through these. Pure; any thread.

// The role identifiers one flavour name stands for: empty for X11 meta targets such as TARGETS,
// the name itself for names without a mapping.
std::vector<std::string> rolesForFlavour(std::string_view name);

// `names` (in the owner's order) as role identifiers, each role once.
std::vector<std::string> rolesForFlavours(const std::vector<std::string>& names);

// How a snapshot reaches the owner's data: whether a flavour is declared, and its bytes (nothing
// when the owner gives none). A flavour is only ever read when declared.
struct FlavourSource {
    std::function<bool(std::string_view name)> declares;
    std::function<std::optional<Bytes>(std::string_view name)> read;
};

// One full reading in the platform reading order: source marker, password-manager hint, files
// (text/uri-list, else x-special/gnome-copied-files), text (UTF8_STRING, else
// text/plain;charset=utf-8, else STRING as Latin-1, else text/plain), rtf, html (UTF-16 by its
// byte-order mark), the text/x-moz-url link and title when there is no text, and the first
// declared image when there is neither text nor a file. `types` becomes the snapshot's types.
PasteboardSnapshot readSnapshot(std::vector<std::string> types, const FlavourSource& source);

// One flavour of a write: its name and its bytes.
struct ServedFlavour {
    std::string name;
    Bytes data;
};

// Every flavour one write offers, in order: files (uri-list and the GNOME form), else a link that
// parses; the image; the text under every text name (STRING in Latin-1); rtf; html; the own-write
// marker; the concealed marker and the hint "secret" when concealed; the source marker.
std::vector<ServedFlavour> flavoursForPayload(const ClipPayload& payload,
                                              std::optional<std::string_view> sourceID);

// UTF-16 with a byte-order mark (or, when `assumeLittleEndian`, without one) to UTF-8; other data
// is returned as it is.
std::string decodeMaybeUtf16(const Bytes& data, bool assumeLittleEndian);

}  // namespace harbex
