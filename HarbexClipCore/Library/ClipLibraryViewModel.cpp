#include "HarbexClipCore/Library/ClipLibraryViewModel.hpp"

#include <algorithm>
#include <cmath>

#include "HarbexClipCore/Library/ClipLibraryModel.hpp"
#include "HarbexClipCore/Paste/ClipPasteNotice.hpp"
#include "HarbexClipCore/Text/ClipDayGroups.hpp"

namespace harbex {

namespace {

std::string times(std::int64_t n) { return std::to_string(n) + (n == 1 ? " time" : " times"); }

std::string_view kindName(ClipKind kind) {
    switch (kind) {
        case ClipKind::text:
        case ClipKind::richText: return "Text";
        case ClipKind::link: return "Link";
        case ClipKind::image: return "Image";
        case ClipKind::file: return "File";
        case ClipKind::color: return "Colour";
        case ClipKind::code: return "Code";
    }
    return {};
}

bool hasDetail(const ClipItem& item, ClipDetail detail) {
    return std::ranges::find(item.details, detail) != item.details.end();
}

std::string kindLine(const ClipItem& item) {
    // Hidden copies say why before anything else.
    if (hasDetail(item, ClipDetail::oneTimeCode)) return "One-time code, hidden";
    if (item.isSensitive) return "Sensitive, hidden";
    std::string line(kindName(item.kind));
    if (item.kind == ClipKind::file && item.filePaths && item.filePaths->size() > 1) {
        line = std::to_string(item.filePaths->size()) + " files";
    }
    const bool edited = item.original.has_value();
    const bool richKept =
        item.rtf || item.html || (item.original && (item.original->rtf || item.original->html));
    if (edited) line += ", edited";
    if (richKept) line += edited ? " · rich text kept" : ", rich text kept";
    return line;
}

std::string lastUsed(Date last, Date now, const Calendar& calendar) {
    const Date today = calendar.startOfDay(now);
    if (last >= today) return " · last today";
    if (last >= calendar.addingDays(today, -1)) return " · last yesterday";
    const Date lastDay = calendar.startOfDay(last);
    const auto days = static_cast<long>(std::lround((today - lastDay) / 86400.0));
    return " · last " + std::to_string(days) + " days ago";
}

std::string inQuotes(std::string_view text) { return "“" + std::string(text) + "”"; }

std::string emptySectionText(const ClipLibrarySection& section) {
    using K = ClipLibrarySection::Kind;
    switch (section.kind) {
        case K::pinboard: return std::string(ClipLibraryViewModel::kEmptyPinboard);
        case K::all: return "Nothing copied yet";
        case K::today: return "Nothing copied today";
        case K::pinned: return "Nothing pinned yet";
        case K::app: return "No copies from this app";
        case K::kind: break;
    }
    switch (section.filter) {
        case ClipFilter::text: return "No text yet";
        case ClipFilter::links: return "No links yet";
        case ClipFilter::images: return "No images yet";
        case ClipFilter::files: return "No files yet";
        case ClipFilter::colours: return "No colours yet";
        case ClipFilter::code: return "No code yet";
        case ClipFilter::all:
        case ClipFilter::pinned: break;
    }
    return "Nothing copied yet";
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

}  // namespace

ClipLibraryViewModel::ClipLibraryViewModel(ClipLibraryEngine& engine, NowFunction now,
                                           Calendar calendar, ClipKeyVocabulary vocabulary)
    : engine_(engine),
      now_(std::move(now)),
      calendar_(std::move(calendar)),
      vocabulary_(vocabulary) {
    sort_ = engine_.settings()->window.sort;
    showsGrid_ = engine_.settings()->window.layout == ClipLibraryLayout::grid;
    watch_.push_back(engine_.history().subscribe([this](const auto&) { engineChanged(); }));
    watch_.push_back(engine_.pins().subscribe([this](const auto&) { engineChanged(); }));
    watch_.push_back(engine_.pinboards().subscribe([this](const auto&) { engineChanged(); }));
    engineChanged();
}

void ClipLibraryViewModel::engineChanged() {
    listing_.update(engine_.history().get(), engine_.pins().get(), engine_.pinboards().get());
    counts_ = ClipLibraryCounts::of(engine_.history().get(), engine_.pinboards().get(),
                                    listing_.pinnedIDs(), now_(), calendar_);
    refresh();
}

void ClipLibraryViewModel::refresh() {
    items_ = listing_.list(section_, query_, now_(), calendar_);
    regroup();
    if (selectedID_ && !listing_.item(*selectedID_)) selectedID_.reset();
    revision_.set(revision_.get() + 1);
}

void ClipLibraryViewModel::regroup() {
    groups_.clear();
    const bool isBoard = section_.kind == ClipLibrarySection::Kind::pinboard;
    if (sort_ != ClipLibrarySort::newest) {
        ClipLibraryModel::sortItems(items_, sort_);
        if (!items_.empty()) groups_.push_back({std::nullopt, items_});
    } else if (isBoard) {
        // A pinboard is the user's arrangement: one run, in their order.
        if (!items_.empty()) groups_.push_back({std::nullopt, items_});
    } else {
        const ClipDayGroups days(now_(), calendar_);
        std::array<std::vector<ClipItem>, 5> runs;
        for (const ClipItem& item : items_) {
            runs[static_cast<std::size_t>(days.groupOf(item.date))].push_back(item);
        }
        for (std::size_t g = 0; g < runs.size(); ++g) {
            if (runs[g].empty()) continue;
            groups_.push_back(
                {std::string(rowGroupTitle(static_cast<ClipRowGroup>(g))), std::move(runs[g])});
        }
    }
}

void ClipLibraryViewModel::storeWindowSettings(ClipLibrarySort sort, ClipLibraryLayout layout) {
    ClipSettings settings = engine_.settings().get();
    if (settings.window.sort == sort && settings.window.layout == layout) return;
    settings.window.sort = sort;
    settings.window.layout = layout;
    engine_.updateSettings(std::move(settings));
}

void ClipLibraryViewModel::setSort(ClipLibrarySort sort) {
    sort_ = sort;
    storeWindowSettings(sort_, showsGrid_ ? ClipLibraryLayout::grid : ClipLibraryLayout::list);
    refresh();
}

void ClipLibraryViewModel::setShowsGrid(bool showsGrid) {
    showsGrid_ = showsGrid;
    storeWindowSettings(sort_, showsGrid_ ? ClipLibraryLayout::grid : ClipLibraryLayout::list);
    revision_.set(revision_.get() + 1);
}

std::optional<Uuid> ClipLibraryViewModel::addPinboard(std::string name) {
    const std::vector<Pinboard>& boards = engine_.pinboards().get();
    Pinboard board;
    board.id = Uuid::random();
    board.name = isBlank(name) ? std::string(kNewPinboardName) : std::move(name);
    board.color = std::string(kPinboardColors[boards.size() % kPinboardColors.size()]);
    board.symbol = std::string(kPinboardSymbols.front());
    const Uuid id = board.id;
    if (!engine_.addPinboard(std::move(board))) return std::nullopt;
    return id;
}

bool ClipLibraryViewModel::renamePinboard(const Uuid& board, std::string name) {
    if (isBlank(name)) return false;
    return engine_.renamePinboard(board, std::move(name));
}

bool ClipLibraryViewModel::setPinboardColor(const Uuid& board, std::string color) {
    return engine_.setPinboardColor(board, std::move(color));
}

bool ClipLibraryViewModel::setPinboardSymbol(const Uuid& board, std::string symbol) {
    return engine_.setPinboardSymbol(board, std::move(symbol));
}

bool ClipLibraryViewModel::removePinboard(const Uuid& board) {
    // Leave the board's section first so the refresh that follows lists something real.
    if (section_.kind == ClipLibrarySection::Kind::pinboard && section_.pinboardID == board) {
        section_ = ClipLibrarySection::all();
    }
    const bool removed = engine_.removePinboard(board);
    refresh();
    return removed;
}

bool ClipLibraryViewModel::movePinboard(const Uuid& board, std::size_t index) {
    const std::vector<Pinboard>& boards = engine_.pinboards().get();
    const auto found =
        std::ranges::find_if(boards, [&](const Pinboard& each) { return each.id == board; });
    if (found == boards.end()) return false;
    const auto from = static_cast<std::size_t>(found - boards.begin());
    index = std::min(index, boards.size() - 1);
    if (index == from) return true;
    // The engine takes the offset to insert before, counted in the old order.
    const std::size_t offsets[] = {from};
    return engine_.movePinboards(offsets, index > from ? index + 1 : index);
}

bool ClipLibraryViewModel::movePinboard(const Uuid& board, Step step) {
    const std::vector<Pinboard>& boards = engine_.pinboards().get();
    const auto found =
        std::ranges::find_if(boards, [&](const Pinboard& each) { return each.id == board; });
    if (found == boards.end()) return false;
    const auto from = static_cast<std::size_t>(found - boards.begin());
    if (step == Step::up) return from > 0 && movePinboard(board, from - 1);
    return from + 1 < boards.size() && movePinboard(board, from + 1);
}

bool ClipLibraryViewModel::canRearrange() const {
    return section_.kind == ClipLibrarySection::Kind::pinboard && section_.pinboardID &&
           sort_ == ClipLibrarySort::newest && isBlank(query_);
}

bool ClipLibraryViewModel::moveOnPinboard(const Uuid& item, std::size_t index) {
    if (!canRearrange() || items_.empty()) return false;
    const Pinboard* board = listing_.pinboard(*section_.pinboardID);
    if (!board) return false;
    const auto listed = std::ranges::find(items_, item, &ClipItem::id);
    if (listed == items_.end()) return false;
    const auto fromListed = static_cast<std::size_t>(listed - items_.begin());
    index = std::min(index, items_.size() - 1);
    if (index == fromListed) return true;

    // The list may leave out entries of the board (copies that are gone), so places are taken
    // from the board itself: the copy goes just before (moving up) or just after (moving down)
    // the copy now listed at `index`.
    const std::vector<Uuid>& ids = board->itemIDs;
    const auto from = std::ranges::find(ids, item);
    const auto anchor = std::ranges::find(ids, items_[index].id);
    if (from == ids.end() || anchor == ids.end()) return false;
    const std::size_t offsets[] = {static_cast<std::size_t>(from - ids.begin())};
    const auto anchorOffset = static_cast<std::size_t>(anchor - ids.begin());
    return engine_.moveOnPinboard(board->id, offsets,
                                  index > fromListed ? anchorOffset + 1 : anchorOffset);
}

bool ClipLibraryViewModel::moveSelectedOnPinboard(Step step) {
    if (!selectedID_) return false;
    const auto listed = std::ranges::find(items_, *selectedID_, &ClipItem::id);
    if (listed == items_.end()) return false;
    const auto at = static_cast<std::size_t>(listed - items_.begin());
    if (step == Step::up) return at > 0 && moveOnPinboard(*selectedID_, at - 1);
    return at + 1 < items_.size() && moveOnPinboard(*selectedID_, at + 1);
}

void ClipLibraryViewModel::addSelectedToPinboard(const Uuid& board) {
    const ClipItem* item = selectedItem();
    const Pinboard* target = listing_.pinboard(board);
    if (!item || !target) return;
    const std::string name = target->name;
    if (!engine_.addToPinboard(board, item->id)) {
        return showNotice("That copy can’t go on " + inQuotes(name));
    }
    showNotice("Added to " + inQuotes(name));
}

void ClipLibraryViewModel::removeSelectedFromPinboard() {
    const ClipItem* item = selectedItem();
    const std::optional<Uuid>& board = section_.pinboardID;
    if (!item || section_.kind != ClipLibrarySection::Kind::pinboard || !board) return;
    const Pinboard* shown = listing_.pinboard(*board);
    const std::string name = shown ? shown->name : std::string();
    if (engine_.removeFromPinboard(*board, item->id)) showNotice("Removed from " + inQuotes(name));
}

void ClipLibraryViewModel::setSection(ClipLibrarySection section) {
    section_ = std::move(section);
    refresh();
}

void ClipLibraryViewModel::setQuery(std::string query) {
    query_ = std::move(query);
    refresh();
}

void ClipLibraryViewModel::select(std::optional<Uuid> id) {
    selectedID_ = std::move(id);
    const ClipItem* item = selectedItem();
    draft_ = item && item->text ? *item->text : std::string();
    revision_.set(revision_.get() + 1);
}

const ClipItem* ClipLibraryViewModel::selectedItem() const {
    return selectedID_ ? listing_.item(*selectedID_) : nullptr;
}

void ClipLibraryViewModel::showNotice(std::string text) {
    notice_ = std::move(text);
    revision_.set(revision_.get() + 1);
}

void ClipLibraryViewModel::paste(std::optional<ClipPasteForm> form) {
    const ClipItem* item = selectedItem();
    if (!item) return showNotice(std::string(ClipPasteNotice::kCannotPaste));
    switch (engine_.paste(*item, form, target_).outcome) {
        case PasteOutcome::pasted: notice_.reset(); break;
        case PasteOutcome::copied: showNotice(ClipPasteNotice::copied(vocabulary_)); break;
        case PasteOutcome::failed: showNotice(std::string(ClipPasteNotice::kCannotPaste)); break;
    }
}

void ClipLibraryViewModel::copy() {
    const ClipItem* item = selectedItem();
    if (!item || engine_.copy(*item).outcome == PasteOutcome::failed) {
        return showNotice(std::string(ClipPasteNotice::kCannotCopy));
    }
    showNotice(ClipPasteNotice::copied(vocabulary_));
}

void ClipLibraryViewModel::togglePin() {
    const ClipItem* item = selectedItem();
    if (!item) return;
    const Uuid id = item->id;
    if (listing_.pinnedIDs().contains(id)) {
        if (engine_.unpin(id)) return showNotice("Unpinned");
        return showNotice("That copy can’t be unpinned");
    }
    const auto pinned = engine_.pin(id);
    if (pinned) return showNotice(std::string(kPinned));
    if (pinned.error().code == ClipPinsError::Code::sensitive)
        return showNotice(std::string(kUnmarkToPinNotice));
    showNotice("That copy can’t be pinned");
}

void ClipLibraryViewModel::remove() {
    const ClipItem* item = selectedItem();
    if (!item) return;
    const Uuid id = item->id;
    if (engine_.remove(id)) selectedID_.reset();
    refresh();
}

void ClipLibraryViewModel::saveDraft() {
    const ClipItem* item = selectedItem();
    if (!item) return;
    const std::optional<ClipEditOutcome> outcome = engine_.edit(item->id, draft_);
    if (!outcome || *outcome == ClipEditOutcome::unchanged) {
        return showNotice(std::string(kUnchanged));
    }
    showNotice(*outcome == ClipEditOutcome::reverted ? "Back to the original" : "Saved");
}

std::string ClipLibraryViewModel::exportFile(const ClipImageReader& readImage) const {
    std::vector<Uuid> pinned;
    for (const ClipItem& pin : engine_.pins().get()) pinned.push_back(pin.id);
    return exportClips(engine_.library(), pinned, readImage, now_());
}

std::expected<ClipImportResult, ClipImportError> ClipLibraryViewModel::importFile(
    std::string_view text) {
    auto file = readClipExport(text);
    if (!file) {
        showNotice(file.error().message);
        return std::unexpected(file.error());
    }
    return merge(std::move(*file));
}

std::expected<ClipImportResult, ClipImportError> ClipLibraryViewModel::merge(ClipExportFile file) {
    std::vector<Uuid> pinned;
    for (const ClipItem& pin : engine_.pins().get()) pinned.push_back(pin.id);
    ClipImportResult result = mergeClipExport(engine_.library(), pinned, std::move(file));
    if (!engine_.adoptImport(result.library, result.newPins)) {
        const ClipImportError closed{ClipImportError::Code::badRecord,
                                     "This file can’t be imported while the history is closed."};
        showNotice(closed.message);
        return std::unexpected(closed);
    }
    const ClipImportCounts& c = result.counts;
    std::string notice =
        "Added " + std::to_string(c.addedItems) + (c.addedItems == 1 ? " copy" : " copies");
    if (c.addedPinboards > 0) {
        notice += " and " + std::to_string(c.addedPinboards) +
                  (c.addedPinboards == 1 ? " pinboard" : " pinboards");
    }
    if (c.keptItems > 0) notice += "; " + std::to_string(c.keptItems) + " were here already";
    showNotice(notice);
    return result;
}

ClipExportSnapshot ClipLibraryViewModel::exportSnapshot() const {
    ClipExportSnapshot snapshot{engine_.library(), {}, now_()};
    for (const ClipItem& pin : engine_.pins().get()) snapshot.pinned.push_back(pin.id);
    return snapshot;
}

void ClipLibraryViewModel::exportFinished(const std::expected<void, ClipTransferError>& result,
                                          const std::string& fileName) {
    showNotice(result ? "Exported to " + inQuotes(fileName) : result.error().message);
}

std::expected<ClipImportResult, ClipTransferError> ClipLibraryViewModel::importFinished(
    std::expected<ClipExportFile, ClipTransferError> file) {
    if (!file) {
        showNotice(file.error().message);
        return std::unexpected(file.error());
    }
    auto merged = merge(std::move(*file));
    if (!merged) {
        return std::unexpected(
            ClipTransferError{ClipTransferError::Code::refused, merged.error().message});
    }
    return std::move(*merged);
}

std::optional<std::string> ClipLibraryViewModel::emptyState() const {
    if (!items_.empty()) return std::nullopt;
    if (!isBlank(query_)) return "No copies match " + inQuotes(query_);
    return emptySectionText(section_);
}

std::optional<ClipLibraryDetail> ClipLibraryViewModel::detail() const {
    const ClipItem* item = selectedItem();
    if (!item) return std::nullopt;
    const bool inHistory = std::ranges::any_of(
        engine_.history().get(), [&](const ClipItem& each) { return each.id == item->id; });
    return detailOf(*item, listing_.pinnedIDs().contains(item->id), listing_.isOnPinboard(item->id),
                    inHistory, now_(), calendar_);
}

ClipLibraryDetail ClipLibraryViewModel::detailOf(const ClipItem& item, bool pinned, bool onPinboard,
                                                 bool inHistory, Date now,
                                                 const Calendar& calendar) {
    ClipLibraryDetail detail;
    detail.kindLine = kindLine(item);
    detail.sourceLine = "From " + item.appName.value_or(item.appID.value_or("an unknown app"));
    // Pins and pinboards are never pruned; everything else ages out with the retention.
    if (pinned || onPinboard) detail.sourceLine += " · kept forever";
    detail.usageLine = "Copied " + times(item.timesCopied);
    if (item.timesPasted > 0) detail.usageLine += ", pasted " + times(item.timesPasted);
    if (item.lastPasted) detail.usageLine += lastUsed(*item.lastPasted, now, calendar);
    if (pinned) {
        detail.pinLine =
            inHistory ? "Pinned, shared with Harbex Tidepool" : "Also in Harbex Tidepool";
    }
    return detail;
}

}  // namespace harbex
