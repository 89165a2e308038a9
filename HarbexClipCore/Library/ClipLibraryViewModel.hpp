#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Library/ClipExport.hpp"
#include "HarbexClipCore/Library/ClipLibraryCounts.hpp"
#include "HarbexClipCore/Library/ClipLibraryEngine.hpp"
#include "HarbexClipCore/Library/ClipLibraryListing.hpp"
#include "HarbexClipCore/Library/ClipLibrarySection.hpp"
#include "HarbexClipCore/Library/ClipLibraryTransfer.hpp"
#include "HarbexClipCore/Library/ClipPinboardStyle.hpp"
#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Clock.hpp"
#include "HarbexClipCore/Support/Observable.hpp"

namespace harbex {

// The lines of the detail pane for one copy.
struct ClipLibraryDetail {
    // What the copy is: "Text, rich text kept", "Text, edited · rich text kept", "Link",
    // "Sensitive, hidden", "One-time code, hidden".
    std::string kindLine;
    // Where it came from and how long it stays: "From Firefox · kept forever".
    std::string sourceLine;
    // How it was used: "Copied 3 times, pasted 2 times · last yesterday".
    std::string usageLine;
    // The pin: "Pinned, shared with Harbex Tidepool" for our own pins, "Also in Harbex Tidepool"
    // for a pin made there that this history does not hold; nothing when not pinned.
    std::optional<std::string> pinLine;

    friend bool operator==(const ClipLibraryDetail&, const ClipLibraryDetail&) = default;
};

// The sidebar, the grouped list and the actions on the selected copy of the library window,
// free of view code. Observes the engine and changes the history only by asking it.
// Thread: main.
class ClipLibraryViewModel {
public:
    static constexpr std::string_view kPinned = "Pinned, and in Harbex Tidepool too";
    static constexpr std::string_view kUnchanged = "That doesn’t change this copy";
    static constexpr std::string_view kEmptyPinboard = "This pinboard is empty";
    static constexpr std::string_view kNewPinboardName = "New Pinboard";

    // Which way a pinboard moves in the sidebar, or a copy on the board being shown.
    enum class Step { up, down };

    // `engine` is observed and must outlive the model.
    ClipLibraryViewModel(ClipLibraryEngine& engine, NowFunction now, Calendar calendar,
                         ClipKeyVocabulary vocabulary = ClipKeyVocabulary::linuxNames);

    void setSection(ClipLibrarySection section);
    void setQuery(std::string query);
    // Selects a copy and loads its text into `draft`.
    void select(std::optional<Uuid> id);
    void setTarget(std::optional<ClipTargetApp> target) { target_ = std::move(target); }
    void setDraft(std::string draft) { draft_ = std::move(draft); }

    // The order and layout of the list. Both start from the window settings, and each change is
    // stored there at once so the window reopens the same way. Any order but `newest` lists
    // one run without day headings (they only make sense while the list runs by date).
    ClipLibrarySort sort() const { return sort_; }
    bool showsGrid() const { return showsGrid_; }
    void setSort(ClipLibrarySort sort);
    void setShowsGrid(bool showsGrid);

    // Pinboards. A new board takes a blank name as "New Pinboard" and the next colour of the
    // palette; it returns the new board's id, or nothing when the history is closed. Renaming
    // to a blank name is refused. Removing the board being shown goes back to `all`.
    std::optional<Uuid> addPinboard(std::string name);
    bool renamePinboard(const Uuid& board, std::string name);
    bool setPinboardColor(const Uuid& board, std::string color);
    bool setPinboardSymbol(const Uuid& board, std::string symbol);
    bool removePinboard(const Uuid& board);
    // Moves a board to `index` in the user's order (clamped to the end).
    bool movePinboard(const Uuid& board, std::size_t index);
    // One place up or down; false at either end.
    bool movePinboard(const Uuid& board, Step step);
    // Whether the listed copies may be rearranged by hand: a pinboard is shown in its own order,
    // neither searched nor sorted otherwise.
    bool canRearrange() const;
    // Moves the listed copy `item` to `index` among the listed copies (clamped to the end), in
    // the shown board's stored order; copies the list leaves out keep their places. False when
    // the list cannot be rearranged or does not hold the copy.
    bool moveOnPinboard(const Uuid& item, std::size_t index);
    // The selected copy one place up or down the board; false at either end.
    bool moveSelectedOnPinboard(Step step);
    // Puts the selected copy on `board` / takes it off the board being shown; each leaves a
    // notice naming the board.
    void addSelectedToPinboard(const Uuid& board);
    void removeSelectedFromPinboard();

    // Actions on the selected copy; each leaves a notice.
    void paste(std::optional<ClipPasteForm> form = std::nullopt);
    void copy();
    void togglePin();
    void remove();
    // Stores `draft` as the copy's text.
    void saveDraft();

    const ClipLibrarySection& section() const { return section_; }
    const std::string& query() const { return query_; }
    const std::optional<Uuid>& selectedID() const { return selectedID_; }
    const std::vector<ClipItem>& items() const { return items_; }
    const std::vector<ClipLibraryGroup>& groups() const { return groups_; }
    const ClipLibraryCounts& counts() const { return counts_; }
    const std::optional<std::string>& notice() const { return notice_; }
    const std::optional<ClipTargetApp>& target() const { return target_; }
    const std::string& draft() const { return draft_; }

    // The export file of the whole library and its pins ("One file with your copies, pins and
    // pinboards."); `readImage` supplies image bytes.
    std::string exportFile(const ClipImageReader& readImage) const;
    // Checks `text` whole, then merges it into the engine's library. A refused file changes
    // nothing. The images of the added copies come back for the caller to store beside the
    // history; the notice says what was added.
    std::expected<ClipImportResult, ClipImportError> importFile(std::string_view text);
    // What an export made on another thread needs.
    ClipExportSnapshot exportSnapshot() const;
    // The notice after an export to the file named `fileName` finished or failed.
    void exportFinished(const std::expected<void, ClipTransferError>& result,
                        const std::string& fileName);
    // Merges a file read and checked on another thread (see readClipExportFile); a failure of
    // reading becomes the notice.
    std::expected<ClipImportResult, ClipTransferError> importFinished(
        std::expected<ClipExportFile, ClipTransferError> file);

    // What the list says when it has no rows: "No copies match “…”" for a search that found
    // nothing, "This pinboard is empty" for an empty board, and a line per empty section
    // ("Nothing copied yet", "Nothing pinned yet", "No links yet", ...). Nothing while there
    // are rows.
    std::optional<std::string> emptyState() const;
    std::optional<ClipLibraryDetail> detail() const;
    // The detail lines of any copy at `now`.
    static ClipLibraryDetail detailOf(const ClipItem& item, bool pinned, bool onPinboard,
                                      bool inHistory, Date now, const Calendar& calendar);

    Observable<std::uint64_t>& revision() { return revision_; }

private:
    void engineChanged();
    void refresh();
    const ClipItem* selectedItem() const;
    void showNotice(std::string text);
    void regroup();
    void storeWindowSettings(ClipLibrarySort sort, ClipLibraryLayout layout);
    std::expected<ClipImportResult, ClipImportError> merge(ClipExportFile file);

    ClipLibraryEngine& engine_;
    NowFunction now_;
    Calendar calendar_;
    ClipKeyVocabulary vocabulary_;

    ClipLibrarySection section_ = ClipLibrarySection::all();
    std::string query_;
    std::optional<Uuid> selectedID_;
    std::vector<ClipItem> items_;
    std::vector<ClipLibraryGroup> groups_;
    ClipLibraryCounts counts_;
    std::optional<std::string> notice_;
    std::optional<ClipTargetApp> target_;
    std::string draft_;
    ClipLibrarySort sort_ = ClipLibrarySort::newest;
    bool showsGrid_ = false;

    ClipLibraryListing listing_;
    std::vector<Subscription> watch_;
    Observable<std::uint64_t> revision_{0};
};

}  // namespace harbex
