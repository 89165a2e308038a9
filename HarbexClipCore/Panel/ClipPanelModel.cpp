#include "HarbexClipCore/Panel/ClipPanelModel.hpp"

#include <algorithm>
#include <cassert>

#include "HarbexClipCore/Panel/ClipCodeLanguage.hpp"
#include "HarbexClipCore/Panel/ClipPanelPlacement.hpp"
#include "HarbexClipCore/Paste/ClipPasteNotice.hpp"
#include "HarbexClipCore/Settings/ClipPlatformWords.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Text/ColorParser.hpp"

namespace harbex {

namespace {

constexpr int kPageStep = 5;
// The action preview shows no more of a result than a preview pane can hold.
constexpr std::size_t kActionPreviewCharacters = 4'000;

constexpr std::string_view kAddedToStack = "Added to the paste stack";
constexpr std::string_view kTakenFromStack = "Taken out of the paste stack";
constexpr std::string_view kPinned = "Pinned, and in Harbex Tidepool too";
constexpr std::string_view kUnpinned = "Unpinned";
constexpr std::string_view kCannotPin = "That copy can’t be pinned";
constexpr std::string_view kDeleted = "Deleted";

std::string returnKeyName(ClipKeyVocabulary vocabulary) {
    return clipKeyName(keycode::kReturn, vocabulary);
}

std::string headerID(ClipRowGroup group) { return "header." + std::string(enumName(group)); }

std::optional<std::string> colourResult(const ClipItem& item, ClipColorFormat format) {
    std::optional<RGBA> colour;
    if (item.colorHex) colour = ColorParser::parse(*item.colorHex);
    if (!colour && item.text) colour = ColorParser::parse(*item.text);
    if (!colour) return std::nullopt;
    return colorText(*colour, format);
}

// The text an action turns the copy into, for transforms and colour conversions.
std::optional<std::string> resultOf(const ClipPanelAction& action, const ClipItem& item) {
    if (action.kind.transform) {
        if (!item.text) return std::nullopt;
        return applyTransform(*action.kind.transform, *item.text);
    }
    if (action.kind.colour) return colourResult(item, *action.kind.colour);
    return std::nullopt;
}

}  // namespace

ClipPanelModel::ClipPanelModel(ClipViewEngine& engine, NowFunction now, ScheduleFunction schedule,
                               Options options)
    : engine_(engine),
      now_(std::move(now)),
      schedule_(std::move(schedule)),
      options_(std::move(options)),
      alive_(std::make_shared<ClipPanelModel*>(this)) {
    watch_.push_back(engine_.history().subscribe([this](const auto&) { historyChanged(); }));
    watch_.push_back(engine_.pins().subscribe([this](const auto&) { historyChanged(); }));
    watch_.push_back(engine_.pinboards().subscribe([this](const auto&) { historyChanged(); }));
    historyChanged();
}

ClipPanelModel::~ClipPanelModel() { *alive_ = nullptr; }

// MARK: - Listing

void ClipPanelModel::historyChanged() {
    // The history is listed where the engine keeps it: every change to it comes through here
    // before anything reads the rows again. Only pins the history lacks are copied.
    const std::vector<ClipItem>& history = engine_.history().get();
    const std::vector<ClipItem>& pins = engine_.pins().get();
    positions_.clear();
    positions_.reserve(history.size() + pins.size());
    for (const ClipItem& item : history) positions_.emplace(item.id, &item);
    pinnedIDs_.clear();
    extraPins_.clear();
    // Room for every pin up front, so that the places taken below stay put.
    extraPins_.reserve(pins.size());
    for (const ClipItem& pin : pins) {
        pinnedIDs_.insert(pin.id);
        if (positions_.contains(pin.id)) continue;
        extraPins_.push_back(pin);
        positions_.emplace(pin.id, &extraPins_.back());
    }
    std::vector<Uuid> pinned(pinnedIDs_.begin(), pinnedIDs_.end());
    pinnedOrBoarded_ = pinnedOrOnPinboard(pinned, engine_.pinboards().get());
    index_.rebuild(history);
    for (const ClipItem& pin : extraPins_) index_.put(pin);
    refresh();
}

void ClipPanelModel::refresh() {
    const ClipSearchOutcome outcome =
        index_.search({query_, filter_, appFilter_}, pinnedOrBoarded_, now_(), options_.calendar);
    timeWord_ = outcome.timeWord;
    buildRows(outcome);
    keepSelection();
    changed();
}

void ClipPanelModel::buildRows(const ClipSearchOutcome& outcome) {
    results_.clear();
    results_.reserve(outcome.results.size());
    for (const ClipSearchResult& result : outcome.results) {
        results_.push_back(positions_.at(result.id));
    }
    // Stable buckets keep the search order inside each group.
    const ClipDayGroups days(now_(), options_.calendar);
    std::array<std::vector<const ClipItem*>, 5> groups;
    for (const ClipItem* item : results_) {
        const ClipRowGroup group =
            pinnedIDs_.contains(item->id) ? ClipRowGroup::pinned : days.groupOf(item->date);
        groups[static_cast<std::size_t>(group)].push_back(item);
    }
    ++rowsRevision_;
    rows_.clear();
    rows_.reserve(results_.size() + groups.size());
    for (std::size_t g = 0; g < groups.size(); ++g) {
        if (groups[g].empty()) continue;
        const auto group = static_cast<ClipRowGroup>(g);
        rows_.push_back({headerID(group), ClipPanelRow::Content::header, group, nullptr});
        for (const ClipItem* item : groups[g]) {
            rows_.push_back({item->id.string(), ClipPanelRow::Content::item, group, item});
        }
    }
}

void ClipPanelModel::keepSelection() {
    if (selectedID_) {
        const bool listed = std::ranges::any_of(rows_, [&](const ClipPanelRow& row) {
            return row.item && row.item->id == *selectedID_;
        });
        if (listed) return;
    }
    selectedID_.reset();
    for (const ClipPanelRow& row : rows_) {
        if (row.item) {
            selectedID_ = row.item->id;
            break;
        }
    }
}

void ClipPanelModel::changed() { revision_.set(revision_.get() + 1); }

const ClipItem* ClipPanelModel::selectedItem() const {
    if (!selectedID_) return nullptr;
    const auto found = positions_.find(*selectedID_);
    return found == positions_.end() ? nullptr : found->second;
}

ClipPanelRowLook ClipPanelModel::look(std::size_t index) const {
    const ClipPanelRow& row = rows_.at(index);
    assert(row.item);
    // Only the first rows can carry ⌘1…⌘9, so counting the headers before them is short.
    int number = 0;
    if (index < 16) {
        number = 1;
        for (std::size_t i = 0; i < index; ++i) number += rows_[i].item ? 1 : 0;
    }
    const ClipItem& item = *row.item;
    ClipPanelRowLook look = ClipPanelRowLook::of(
        item, pinnedIDs_.contains(item.id) ? ClipPinState::pinned : ClipPinState::unpinned,
        stack_.contains(item.id) ? ClipStackState::stacked : ClipStackState::unstacked, number);
    if (look.number > 0) {
        const auto digit = clipKeyCodeForKeysym(static_cast<std::uint32_t>('0' + look.number));
        if (digit) look.numberKeys = commandKeys(*digit, options_.vocabulary);
    }
    look.language = languageOf(item);
    return look;
}

std::optional<std::string> ClipPanelModel::languageOf(const ClipItem& item) const {
    if (item.kind != ClipKind::code || item.isSensitive || !item.text) return std::nullopt;
    return ClipCodeLanguage::guess(*item.text, languages);
}

std::optional<ClipPanelPreview> ClipPanelModel::preview() const {
    if (mode_ == Mode::actions && actionItem_) {
        const ClipPanelAction* action = selectedAction();
        if (!action || !actionPreview_) {
            ClipPanelPreview shown = ClipPanelPreview::of(*actionItem_);
            shown.language = languageOf(*actionItem_);
            return shown;
        }
        ClipPanelPreview result;
        result.kind = ClipPanelPreview::Kind::text;
        result.title = action->title;
        result.body = *actionPreview_;
        result.isCode = actionItem_->kind == ClipKind::code;
        result.details = returnKeyName(options_.vocabulary) + " pastes it, " +
                         commandKeys(keycode::kReturn, options_.vocabulary) +
                         " keeps it as a new copy";
        return result;
    }
    const ClipItem* item = selectedItem();
    if (!item) return std::nullopt;
    ClipPanelPreview shown = ClipPanelPreview::of(*item);
    shown.language = languageOf(*item);
    return shown;
}

std::vector<ClipPanelHint> ClipPanelModel::hints() const {
    const ClipKeyVocabulary v = options_.vocabulary;
    const std::string enter = returnKeyName(v);
    if (mode_ == Mode::actions) {
        return {{enter, "Run"}, {"Tab", "Next group"}, {"Esc", "Back"}};
    }
    std::vector<ClipPanelHint> hints;
    const ClipItem* item = selectedItem();
    if (!stack_.isEmpty()) {
        hints.push_back({enter, "Paste the stack (" + std::to_string(stack_.ids.size()) + ")"});
    } else if (item) {
        hints.push_back({enter, engine_.settings()->panel.returnCopiesOnly ? "Copy" : "Paste"});
    }
    if (item) {
        hints.push_back({commandKeys(keycode::kK, v), "Actions"});
        hints.push_back({commandKeys(keycode::kP, v), isPinned(item->id) ? "Unpin" : "Pin"});
    }
    hints.push_back({"Tab", "Filter"});
    return hints;
}

bool ClipPanelModel::showsPreview() const {
    const ClipPanelSettings& panel = engine_.settings()->panel;
    return panel.showsPreview && ClipPanelPlacement::hasPreview(panel.size);
}

void ClipPanelModel::open(std::optional<ClipTargetApp> target) {
    target_ = std::move(target);
    mode_ = Mode::browse;
    leaveActions();
    query_.clear();
    if (!engine_.settings()->remembersFilter) {
        filter_ = ClipFilter::all;
        appFilter_.reset();
    }
    selectedID_.reset();
    refresh();
    if (sequence_ && sequence_->isWaiting) {
        sequence_->advance();
        (void)giveOutNext();
    }
}

void ClipPanelModel::setQuery(std::string query) {
    if (query == query_) return;
    query_ = std::move(query);
    refresh();
}

void ClipPanelModel::setFilter(ClipFilter filter) {
    if (filter == filter_) return;
    filter_ = filter;
    refresh();
}

void ClipPanelModel::setAppFilter(std::optional<std::string> appID) {
    if (appID == appFilter_) return;
    appFilter_ = std::move(appID);
    refresh();
}

void ClipPanelModel::select(const Uuid& id) {
    if (!positions_.contains(id)) return;
    selectedID_ = id;
    changed();
}

std::optional<ClipPanelMessage> ClipPanelModel::emptyState() {
    if (!results_.empty()) return std::nullopt;
    const ClipKeyVocabulary v = options_.vocabulary;
    if (positions_.empty()) return ClipPanelText::emptyHistory(v);
    const bool searching = !extractTimeWord(query_).rest.empty() || timeWord_.has_value();
    if (!searching) return ClipPanelText::emptyFilter(filter_, v);
    std::size_t inAll = 0;
    if (filter_ != ClipFilter::all) {
        inAll = index_
                    .search({query_, ClipFilter::all, appFilter_}, pinnedOrBoarded_, now_(),
                            options_.calendar)
                    .results.size();
    }
    return ClipPanelMessage{ClipPanelText::noResults(filter_, query_),
                            ClipPanelText::noResultsHint(filter_, inAll)};
}

std::optional<std::string> ClipPanelModel::pauseBanner() const {
    return ClipPanelText::pauseBanner(engine_.settings()->pausedUntil, now_(), options_.calendar,
                                      options_.locale);
}

// MARK: - Notices

void ClipPanelModel::showNotice(std::string text, bool fades) {
    const std::uint64_t number = ++noticeNumber_;
    notice_ = std::move(text);
    noticeFades_ = fades;
    changed();
    if (!fades) return;
    std::weak_ptr<ClipPanelModel*> weak = alive_;
    schedule_(options_.settleDelay, [weak, number] {
        const auto alive = weak.lock();
        if (!alive || !*alive) return;
        ClipPanelModel& model = **alive;
        if (model.noticeNumber_ != number) return;
        model.notice_.reset();
        model.noticeFades_ = false;
        model.changed();
    });
}

ClipPanelModel::Effect ClipPanelModel::pasteOutcome(const PasteResult& result) {
    switch (result.outcome) {
        case PasteOutcome::pasted: return Effect::pasted;
        case PasteOutcome::copied:
            showNotice(ClipPasteNotice::copied(options_.vocabulary), true);
            return Effect::copied;
        case PasteOutcome::failed:
            showNotice(std::string(ClipPasteNotice::kCannotPaste), false);
            return Effect::none;
    }
    return Effect::none;
}

// MARK: - Doing

ClipPanelModel::Effect ClipPanelModel::paste(const ClipItem& item,
                                             std::optional<ClipPasteForm> form) {
    // "Copies instead of pasting": the copy waits on the clipboard for the person to paste.
    if (engine_.settings()->panel.returnCopiesOnly) return copySelected(item);
    return pasteOutcome(engine_.paste(item, form, target_));
}

ClipPanelModel::Effect ClipPanelModel::pasteStack() {
    const std::optional<PasteStack::Separator> separator =
        PasteStack::separator(engine_.settings()->panel.stackMode);
    if (!separator) {
        sequence_ = ClipStackSequence(stack_.ids);
        stack_.clear();
        return giveOutNext();
    }
    std::vector<std::string> texts;
    for (const Uuid& id : stack_.ids) {
        const auto found = positions_.find(id);
        if (found != positions_.end() && found->second->text) {
            texts.push_back(*found->second->text);
        }
    }
    const std::string joined = PasteStack::join(texts, *separator);
    if (joined.empty()) {
        showNotice(std::string(ClipPasteNotice::kCannotPaste), false);
        return Effect::none;
    }
    const Effect effect = pasteOutcome(engine_.pasteText(joined, target_));
    if (effect != Effect::none) {
        stack_.clear();
        changed();
    }
    return effect;
}

ClipPanelModel::Effect ClipPanelModel::giveOutNext() {
    if (!sequence_) return Effect::none;
    sequence_->skip([this](const Uuid& id) { return positions_.contains(id); });
    const std::optional<Uuid> current = sequence_->current();
    if (!current) {
        sequence_.reset();
        changed();
        return Effect::none;
    }
    const PasteResult result = engine_.copy(*positions_.at(*current));
    if (result.outcome == PasteOutcome::failed) {
        showNotice(std::string(ClipPasteNotice::kCannotPaste), false);
        return Effect::none;
    }
    sequence_->wait(result.changeCount);
    showNotice(sequence_->notice(options_.vocabulary), false);
    return Effect::copied;
}

ClipPanelModel::Effect ClipPanelModel::copySelected(const ClipItem& item) {
    const PasteResult result = engine_.copy(item);
    if (result.outcome == PasteOutcome::failed) {
        showNotice(std::string(ClipPasteNotice::kCannotCopy), false);
        return Effect::none;
    }
    showNotice(ClipPasteNotice::copied(options_.vocabulary), true);
    return Effect::copied;
}

ClipPanelModel::Effect ClipPanelModel::toggleStack(const ClipItem& item) {
    if (stack_.remove(item.id)) {
        showNotice(std::string(kTakenFromStack), true);
    } else {
        stack_.add(item.id);
        showNotice(std::string(kAddedToStack), true);
    }
    return Effect::none;
}

ClipPanelModel::Effect ClipPanelModel::togglePin(const ClipItem& item) {
    const Uuid id = item.id;
    if (pinnedIDs_.contains(id)) {
        if (engine_.unpin(id)) {
            showNotice(std::string(kUnpinned), true);
        } else {
            showNotice(std::string(kCannotPin), false);
        }
        return Effect::none;
    }
    if (const auto pinned = engine_.pin(id); pinned) {
        showNotice(std::string(kPinned), true);
    } else if (pinned.error().code == ClipPinsError::Code::sensitive) {
        showNotice(std::string(kUnmarkToPinNotice), false);
    } else {
        showNotice(std::string(kCannotPin), false);
    }
    return Effect::none;
}

ClipPanelModel::Effect ClipPanelModel::forget(const ClipItem& item) {
    // The next copy down takes the selection, as in any list after a deletion.
    const Uuid id = item.id;
    std::optional<Uuid> next;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!rows_[i].item || rows_[i].item->id != id) continue;
        for (std::size_t j = i + 1; j < rows_.size() && !next; ++j) {
            if (rows_[j].item) next = rows_[j].item->id;
        }
        for (std::size_t j = i; j-- > 0 && !next;) {
            if (rows_[j].item) next = rows_[j].item->id;
        }
        break;
    }
    stack_.remove(id);
    if (!engine_.remove(id)) {
        showNotice(std::string(ClipPanelText::kDoesNotApply), false);
        return Effect::none;
    }
    if (next && positions_.contains(*next)) selectedID_ = next;
    showNotice(std::string(kDeleted), true);
    return Effect::none;
}

ClipPanelModel::Effect ClipPanelModel::open(const ClipItem& item) {
    if (item.kind == ClipKind::link) return Effect::open;
    if (item.kind == ClipKind::file) return Effect::reveal;
    showNotice(std::string(ClipPanelText::kDoesNotApply), true);
    return Effect::none;
}

ClipPanelModel::Effect ClipPanelModel::quickLook(const ClipItem* item) {
    return item ? Effect::quickLook : Effect::none;
}

ClipPanelModel::Effect ClipPanelModel::saveImage(const ClipItem& item) {
    if (item.kind == ClipKind::image) return Effect::saveImage;
    showNotice(std::string(ClipPanelText::kDoesNotApply), true);
    return Effect::none;
}

ClipPanelModel::Effect ClipPanelModel::useText(const std::optional<std::string>& text,
                                               const ClipItem& from, ResultUse use) {
    if (!text) {
        showNotice(std::string(ClipPanelText::kDoesNotApply), false);
        return Effect::none;
    }
    if (use == ResultUse::paste) {
        const Effect effect = pasteOutcome(engine_.pasteText(*text, target_));
        if (effect != Effect::none) leaveActions();
        return effect;
    }
    const std::optional<ClipItem> kept = engine_.addText(*text, from);
    if (!kept) {
        showNotice(std::string(ClipPanelText::kDoesNotApply), false);
        return Effect::none;
    }
    leaveActions();
    query_.clear();
    refresh();
    select(kept->id);
    showNotice(std::string(ClipPanelText::kSavedAsNewCopy), true);
    return Effect::none;
}

// MARK: - Keys

ClipPanelModel::Effect ClipPanelModel::handle(Key key) {
    return mode_ == Mode::actions ? handleActions(key) : handleBrowse(key);
}

void ClipPanelModel::moveSelection(int step) {
    std::vector<const ClipItem*> listed;
    listed.reserve(rows_.size());
    std::size_t at = 0;
    for (const ClipPanelRow& row : rows_) {
        if (!row.item) continue;
        if (selectedID_ && row.item->id == *selectedID_) at = listed.size();
        listed.push_back(row.item);
    }
    if (listed.empty()) return;
    const long target =
        std::clamp<long>(static_cast<long>(at) + step, 0, static_cast<long>(listed.size()) - 1);
    selectedID_ = listed[static_cast<std::size_t>(target)]->id;
    changed();
}

void ClipPanelModel::stepFilter(int step) {
    constexpr auto kFilters = allCases<ClipFilter>();
    const long count = static_cast<long>(kFilters.size());
    const long at = static_cast<long>(std::ranges::find(kFilters, filter_) - kFilters.begin());
    setFilter(kFilters[static_cast<std::size_t>(((at + step) % count + count) % count)]);
}

ClipPanelModel::Effect ClipPanelModel::handleBrowse(Key key) {
    using K = Key::Kind;
    const ClipItem* item = selectedItem();
    switch (key.kind) {
        case K::up: moveSelection(-1); return Effect::none;
        case K::down: moveSelection(1); return Effect::none;
        case K::shiftUp: moveSelection(-kPageStep); return Effect::none;
        case K::shiftDown: moveSelection(kPageStep); return Effect::none;
        case K::tab: stepFilter(1); return Effect::none;
        case K::shiftTab: stepFilter(-1); return Effect::none;
        case K::escape:
            if (!query_.empty()) {
                setQuery({});
                return Effect::none;
            }
            return Effect::close;
        case K::deleteOnEmpty:
            if (appFilter_) {
                setAppFilter(std::nullopt);
            } else if (filter_ != ClipFilter::all) {
                setFilter(ClipFilter::all);
            }
            return Effect::none;
        case K::commandNumber: {
            int seen = 0;
            for (const ClipPanelRow& row : rows_) {
                if (row.item && ++seen == key.number) {
                    selectedID_ = row.item->id;
                    return paste(*row.item, std::nullopt);
                }
            }
            return Effect::none;
        }
        case K::returnKey:
            if (!stack_.isEmpty()) return pasteStack();
            return item ? paste(*item, std::nullopt) : Effect::none;
        case K::shiftReturn: return item ? paste(*item, ClipPasteForm::plain) : Effect::none;
        case K::commandReturn:
        case K::commandClick: return item ? toggleStack(*item) : Effect::none;
        case K::commandC: return item ? copySelected(*item) : Effect::none;
        case K::commandP: return item ? togglePin(*item) : Effect::none;
        case K::commandDelete: return item ? forget(*item) : Effect::none;
        case K::commandK:
            if (item) enterActions();
            return Effect::none;
        case K::commandO: return item ? open(*item) : Effect::none;
        case K::commandY:
        case K::space: return quickLook(item);
        case K::commandS: return item ? saveImage(*item) : Effect::none;
    }
    return Effect::none;
}

ClipPanelModel::Effect ClipPanelModel::handleActions(Key key) {
    using K = Key::Kind;
    switch (key.kind) {
        case K::escape:
        case K::commandK: leaveActions(); return Effect::none;
        case K::up: moveActionSelection(-1); return Effect::none;
        case K::down: moveActionSelection(1); return Effect::none;
        case K::shiftUp: moveActionSelection(-kPageStep); return Effect::none;
        case K::shiftDown: moveActionSelection(kPageStep); return Effect::none;
        case K::tab:
        case K::shiftTab: {
            constexpr auto kCategories = allCases<ClipActionCategory>();
            const long count = static_cast<long>(kCategories.size());
            const long at = static_cast<long>(std::ranges::find(kCategories, actionCategory_) -
                                              kCategories.begin());
            const long step = key.kind == K::tab ? 1 : -1;
            setActionCategory(
                kCategories[static_cast<std::size_t>(((at + step) % count + count) % count)]);
            return Effect::none;
        }
        case K::returnKey:
        case K::commandReturn: {
            const ClipPanelAction* action = selectedAction();
            if (!action) return Effect::none;
            return perform(*action,
                           key.kind == K::commandReturn ? ResultUse::keep : ResultUse::paste);
        }
        case K::shiftReturn:
            if (!actionItem_) return Effect::none;
            return paste(*actionItem_, ClipPasteForm::plain);
        case K::commandNumber: {
            const auto n = static_cast<std::size_t>(key.number);
            if (n == 0 || n > actions_.size()) return Effect::none;
            return perform(actions_[n - 1]);
        }
        case K::deleteOnEmpty: setActionCategory(ClipActionCategory::all); return Effect::none;
        default: return Effect::none;
    }
}

// MARK: - Actions mode

void ClipPanelModel::enterActions() {
    const ClipItem* item = selectedItem();
    if (!item) return;
    mode_ = Mode::actions;
    actionItem_ = *item;
    ClipPanelActions::Context context;
    context.targetName = target_ ? target_->name : std::nullopt;
    context.pin = pinnedIDs_.contains(item->id) ? ClipPinState::pinned : ClipPinState::unpinned;
    context.stack = stack_.contains(item->id) ? ClipStackState::stacked : ClipStackState::unstacked;
    context.pinboards = engine_.pinboards().get();
    context.vocabulary = options_.vocabulary;
    allActions_ = ClipPanelActions::actions(*item, context);
    actionQuery_.clear();
    actionCategory_ = ClipActionCategory::all;
    selectedActionID_.reset();
    filterActions();
}

void ClipPanelModel::leaveActions() {
    const bool wasActive = mode_ == Mode::actions || actionItem_.has_value();
    mode_ = Mode::browse;
    actionItem_.reset();
    allActions_.clear();
    actions_.clear();
    actionQuery_.clear();
    selectedActionID_.reset();
    actionPreview_.reset();
    if (wasActive) changed();
}

void ClipPanelModel::setActionQuery(std::string query) {
    actionQuery_ = std::move(query);
    filterActions();
}

void ClipPanelModel::setActionCategory(ClipActionCategory category) {
    actionCategory_ = category;
    filterActions();
}

void ClipPanelModel::selectAction(const std::string& actionID) {
    if (std::ranges::none_of(actions_, [&](const auto& a) { return a.id() == actionID; })) return;
    selectedActionID_ = actionID;
    updateActionPreview();
    changed();
}

void ClipPanelModel::filterActions() {
    actions_ = ClipPanelActions::filtered(allActions_, actionCategory_, actionQuery_);
    if (!selectedAction()) {
        selectedActionID_ =
            actions_.empty() ? std::nullopt : std::optional<std::string>(actions_.front().id());
    }
    updateActionPreview();
    changed();
}

const ClipPanelAction* ClipPanelModel::selectedAction() const {
    if (!selectedActionID_) return nullptr;
    for (const ClipPanelAction& action : actions_) {
        if (action.id() == *selectedActionID_) return &action;
    }
    return nullptr;
}

void ClipPanelModel::moveActionSelection(int step) {
    if (actions_.empty()) return;
    long at = 0;
    for (std::size_t i = 0; i < actions_.size(); ++i) {
        if (selectedActionID_ && actions_[i].id() == *selectedActionID_) at = static_cast<long>(i);
    }
    const long target = std::clamp<long>(at + step, 0, static_cast<long>(actions_.size()) - 1);
    selectedActionID_ = actions_[static_cast<std::size_t>(target)].id();
    updateActionPreview();
    changed();
}

void ClipPanelModel::updateActionPreview() {
    actionPreview_.reset();
    const ClipPanelAction* action = selectedAction();
    if (!action || !actionItem_) return;
    if (auto result = resultOf(*action, *actionItem_)) {
        actionPreview_ = std::string(characterPrefix(*result, kActionPreviewCharacters));
    }
}

ClipPanelModel::Effect ClipPanelModel::perform(const ClipPanelAction& action, ResultUse use) {
    if (!actionItem_) return Effect::none;
    // The copy the actions were built for, even if the history has moved on since.
    const ClipItem item = *actionItem_;
    using C = ClipPanelActionKind::Case;
    Effect effect = Effect::none;
    switch (action.kind.kind) {
        case C::transform:
        case C::colour: return useText(resultOf(action, item), item, use);
        case C::paste: effect = paste(item, std::nullopt); break;
        case C::pastePlain: effect = paste(item, ClipPasteForm::plain); break;
        case C::copy: effect = copySelected(item); break;
        case C::addToStack: effect = toggleStack(item); break;
        case C::pin: effect = togglePin(item); break;
        case C::delete_: effect = forget(item); break;
        case C::addToPinboard: {
            const Uuid board = *action.kind.pinboard;
            if (engine_.addToPinboard(board, item.id)) {
                std::string name;
                for (const Pinboard& p : engine_.pinboards().get()) {
                    if (p.id == board) name = p.name;
                }
                showNotice("Added to " + name, true);
            } else {
                showNotice(std::string(ClipPanelText::kDoesNotApply), false);
                return Effect::none;
            }
            break;
        }
        case C::openLink: effect = Effect::open; break;
        case C::showInFinder: effect = Effect::reveal; break;
        case C::quickLook: effect = Effect::quickLook; break;
        case C::saveImage: effect = Effect::saveImage; break;
    }
    // A failure keeps the list up so that the person can try something else.
    if (notice_ && !noticeFades_ && effect == Effect::none) return effect;
    leaveActions();
    return effect;
}

}  // namespace harbex
