#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

// The copies collected in the panel to be pasted together, in the order they were added. A value;
// main thread like the panel that holds it.
struct PasteStack {
    // How the joining stack modes put texts together.
    enum class Separator { newLine, comma, space };

    std::vector<Uuid> ids;

    // The separator of a joining mode; nothing for `onePerPaste`, which gives copies out singly.
    static std::optional<Separator> separator(ClipStackMode mode);

    // The texts joined into one paste. Line breaks join with "\n", commas with ", " and spaces
    // with " ". For commas and spaces each text is trimmed of surrounding white space (a copied
    // word often carries a trailing line break that would split the list); for line breaks only
    // trailing line breaks go, so indentation survives. Texts left empty are skipped, so the
    // result never holds doubled separators.
    static std::string join(const std::vector<std::string>& texts, Separator separator);

    // Adds `id` at the end; a copy already in the stack stays where it is. Returns whether it
    // was added.
    bool add(const Uuid& id);
    // Takes `id` out; returns whether it was there.
    bool remove(const Uuid& id);
    bool contains(const Uuid& id) const;
    bool isEmpty() const { return ids.empty(); }
    std::size_t count() const { return ids.size(); }
    void clear() { ids.clear(); }

    friend bool operator==(const PasteStack&, const PasteStack&) = default;
};

}  // namespace harbex
