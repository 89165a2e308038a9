#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Paste/ClipViewEngine.hpp"

namespace harbex {

// What the library window needs of the clip engine beyond the panel's needs: editing, pinboard
// upkeep and taking in an imported library. Thread: main.
class ClipLibraryEngine : public ClipViewEngine {
public:
    // Edits the copy's text (ClipItem::edit); nothing when the copy is gone.
    virtual std::optional<ClipEditOutcome> edit(const Uuid& id, const std::string& text) = 0;
    virtual bool removeFromPinboard(const Uuid& board, const Uuid& item) = 0;
    // Pinboard upkeep; each returns whether the history was open and the board found.
    virtual bool addPinboard(Pinboard board) = 0;
    virtual bool renamePinboard(const Uuid& board, std::string name) = 0;
    virtual bool setPinboardColor(const Uuid& board, std::string color) = 0;
    virtual bool setPinboardSymbol(const Uuid& board, std::string symbol) = 0;
    virtual bool removePinboard(const Uuid& board) = 0;
    // Moves the boards at `fromOffsets` to before `toOffset` (offsets into the old order).
    virtual bool movePinboards(std::span<const std::size_t> fromOffsets, std::size_t toOffset) = 0;
    // Moves the entries of `board` at `fromOffsets` to before `toOffset` (offsets into the
    // board's old order); returns whether the history was open and the board found.
    virtual bool moveOnPinboard(const Uuid& board, std::span<const std::size_t> fromOffsets,
                                std::size_t toOffset) = 0;
    // Publishes and stores the whole settings record.
    virtual void updateSettings(ClipSettings settings) = 0;
    // The whole library as it stands (for export).
    virtual const ClipLibrary& library() = 0;
    // Replaces the library with `merged` (an import that already kept every existing copy) and
    // pins `pinIDs`; returns whether the history was open to take it.
    virtual bool adoptImport(ClipLibrary merged, const std::vector<Uuid>& pinIDs) = 0;
};

}  // namespace harbex
