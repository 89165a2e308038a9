#pragma once

#include <optional>
#include <string>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Panel/ClipPanelEngine.hpp"

namespace harbex {

// What the library window needs of the clip engine beyond the panel's needs: editing, pinboard
// upkeep and taking in an imported library. Thread: main.
class ClipLibraryEngine : public ClipPanelEngine {
public:
    // Edits the copy's text (ClipItem::edit); nothing when the copy is gone.
    virtual std::optional<ClipEditOutcome> edit(const Uuid& id, const std::string& text) = 0;
    virtual bool removeFromPinboard(const Uuid& board, const Uuid& item) = 0;
    // The whole library as it stands (for export).
    virtual const ClipLibrary& library() = 0;
    // Replaces the library with `merged` (an import that already kept every existing copy) and
    // pins `pinIDs`; returns whether the history was open to take it.
    virtual bool adoptImport(ClipLibrary merged, const std::vector<Uuid>& pinIDs) = 0;
};

}  // namespace harbex
