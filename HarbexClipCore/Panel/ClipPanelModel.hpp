#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "HarbexClipCore/Panel/ClipPanelAction.hpp"
#include "HarbexClipCore/Panel/ClipPanelActions.hpp"
#include "HarbexClipCore/Panel/ClipPanelKey.hpp"
#include "HarbexClipCore/Panel/ClipPanelPreview.hpp"
#include "HarbexClipCore/Panel/ClipPanelRow.hpp"
#include "HarbexClipCore/Panel/ClipPanelRowLook.hpp"
#include "HarbexClipCore/Panel/ClipPanelText.hpp"
#include "HarbexClipCore/Paste/ClipStackSequence.hpp"
#include "HarbexClipCore/Paste/ClipViewEngine.hpp"
#include "HarbexClipCore/Paste/PasteStack.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Clock.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Support/Observable.hpp"
#include "HarbexClipCore/Text/ClipSearchIndex.hpp"

namespace harbex {

// One key hint of the panel's footer: the key as the vocabulary names it, and what it does.
struct ClipPanelHint {
    std::string key;
    std::string label;

    friend bool operator==(const ClipPanelHint&, const ClipPanelHint&) = default;
};

// How a panel model is set up beyond its collaborators.
struct ClipPanelOptions {
    Calendar calendar{};
    ClipKeyVocabulary vocabulary = ClipKeyVocabulary::linuxNames;
    std::string locale{};      // ICU locale id for times; empty for the default
    double settleDelay = 1.5;  // seconds a fading notice stays
};

// Everything the quick panel shows and does, free of any view: the query and filters, the
// grouped rows, the selection, the paste stack, short-lived notices and the actions mode. The
// view renders it and forwards keys (see ClipPanelKeyRouter); each key answers an `Effect` that
// the panel controller carries out. The model changes the history only by asking the engine.
// Thread: main.
//
// The keys, beyond the plain paste:
// - Return pastes the selection; with copies in the paste stack it pastes the stack instead
//   ("Paste All as a Stack"). Shift-Return pastes as plain text. ⌘Return puts the selection in
//   the stack or takes it out again (⌘-click does the same for the clicked row), so a copy
//   stacked by mistake is one more ⌘Return away from gone. In actions mode ⌘Return keeps a
//   transform's result as a new copy instead of pasting it.
// - ⌘1…⌘9 paste the n-th copy of the list (headers do not count).
// - Up and Down stop at the ends; Shift-Up and Shift-Down move five copies at a time, stopping at
//   the ends too. Tab and Shift-Tab step through the filters, wrapping around.
// - Escape leaves actions mode; in browse mode it clears a query first, then closes.
// - Delete in an empty field drops the application filter, then the kind filter.
// - ⌘O opens a link or shows a file; ⌘Y and Space show Quick Look; ⌘S saves an image. On copies
//   where a key does not apply the panel says "That doesn’t work on this copy".
// Notices that report success fade after `settleDelay` seconds; failures stay until replaced.
class ClipPanelModel {
public:
    using Mode = ClipPanelMode;
    using Key = ClipPanelKey;
    using Options = ClipPanelOptions;

    // What the controller must do after a key.
    enum class Effect { pasted, quickLook, open, reveal, saveImage, none, close, copied };

    // `engine` is observed and must outlive the model. `now` and `schedule` are the injected
    // clock and deferral; a scheduled fade that runs after the model is gone does nothing.
    ClipPanelModel(ClipViewEngine& engine, NowFunction now, ScheduleFunction schedule,
                   Options options = {});
    ~ClipPanelModel();
    ClipPanelModel(const ClipPanelModel&) = delete;
    ClipPanelModel& operator=(const ClipPanelModel&) = delete;

    // The panel shows: `target` receives pastes. Clears the query and leaves actions mode; keeps
    // the filter only when `remembersFilter` is on; selects the first copy. A one-per-paste
    // sequence that was waiting gives out its next copy.
    void open(std::optional<ClipTargetApp> target);

    // Search. A time word in the query ("notes last week") limits the dates.
    void setQuery(std::string query);
    void setFilter(ClipFilter filter);
    // Restrict to copies from one application (bundle identifier), or none.
    void setAppFilter(std::optional<std::string> appID);
    void select(const Uuid& id);

    // Answers one key.
    Effect handle(Key key);

    // Actions mode.
    void setActionQuery(std::string query);
    void setActionCategory(ClipActionCategory category);
    void selectAction(const std::string& actionID);
    // Carries out an action on `actionItem` (a click on an entry). `keep` (⌘Return) keeps a
    // transform's or conversion's result as a new copy instead of pasting it.
    enum class ResultUse { paste, keep };
    Effect perform(const ClipPanelAction& action, ResultUse use = ResultUse::paste);

    // Fields, in order.
    const std::string& query() const { return query_; }
    ClipFilter filter() const { return filter_; }
    const std::optional<std::string>& appFilter() const { return appFilter_; }
    std::optional<ClipTimeWord> timeWord() const { return timeWord_; }
    const std::vector<const ClipItem*>& results() const { return results_; }
    const std::vector<ClipPanelRow>& rows() const { return rows_; }
    const std::optional<Uuid>& selectedID() const { return selectedID_; }
    const PasteStack& stack() const { return stack_; }
    const std::optional<ClipStackSequence>& sequence() const { return sequence_; }
    const std::optional<std::string>& notice() const { return notice_; }
    bool noticeFades() const { return noticeFades_; }
    std::uint64_t noticeNumber() const { return noticeNumber_; }
    Mode mode() const { return mode_; }
    const std::string& actionQuery() const { return actionQuery_; }
    ClipActionCategory actionCategory() const { return actionCategory_; }
    const std::vector<ClipPanelAction>& actions() const { return actions_; }
    const std::optional<std::string>& selectedActionID() const { return selectedActionID_; }
    const std::optional<ClipItem>& actionItem() const { return actionItem_; }
    const std::optional<std::string>& actionPreview() const { return actionPreview_; }
    const std::optional<ClipTargetApp>& target() const { return target_; }
    double settleDelay() const { return options_.settleDelay; }
    const std::vector<ClipPanelAction>& allActions() const { return allActions_; }
    // Code-language names the view shows beside code copies, set by the application (see
    // ClipCodeLanguage::knownNames); rows and the preview name a code copy's language only
    // when it is one of these. Empty: no language is shown.
    std::vector<std::string> languages;

    // What the list area shows when there are no rows: the empty history, an empty filter, or
    // the no-results text with its hint. Nothing while there are rows.
    std::optional<ClipPanelMessage> emptyState();
    // The pause banner for the engine's `pausedUntil` at now, or nothing.
    std::optional<std::string> pauseBanner() const;
    // The selected copy, when there is one.
    const ClipItem* selectedItem() const;

    // How the copy in row `index` of `rows()` looks: pinned and stacked marks from the model,
    // ⌘1…⌘9 numbers by its place among the listed copies. Requires an item row.
    ClipPanelRowLook look(std::size_t index) const;
    // Whether the copy is pinned (listed under "Pinned").
    bool isPinned(const Uuid& id) const { return pinnedIDs_.contains(id); }
    // What the preview pane shows: the selected copy; in actions mode the copy the actions are
    // for, or the selected action's result when it has one (titled with the action). Nothing
    // without a copy.
    std::optional<ClipPanelPreview> preview() const;
    // The footer's key hints for the mode and the selection.
    std::vector<ClipPanelHint> hints() const;
    // Whether the pane is shown: the `showsPreview` setting, at a size with room for it.
    bool showsPreview() const;
    // Advances whenever `rows()` is rebuilt (history, query or filter changes), not when only
    // the selection, the notice or the mode change.
    std::uint64_t rowsRevision() const { return rowsRevision_; }

    // Advances after every change the view should redraw for.
    Observable<std::uint64_t>& revision() { return revision_; }

private:
    // The language shown beside a code copy: nothing for other kinds and for hidden copies.
    std::optional<std::string> languageOf(const ClipItem& item) const;

    void historyChanged();
    void refresh();
    void buildRows(const ClipSearchOutcome& outcome);
    void keepSelection();
    void changed();

    void showNotice(std::string text, bool fades);
    Effect pasteOutcome(const PasteResult& result);

    Effect paste(const ClipItem& item, std::optional<ClipPasteForm> form);
    Effect pasteStack();
    Effect giveOutNext();
    Effect copySelected(const ClipItem& item);
    Effect toggleStack(const ClipItem& item);
    Effect togglePin(const ClipItem& item);
    Effect forget(const ClipItem& item);
    Effect open(const ClipItem& item);
    Effect quickLook(const ClipItem* item);
    Effect saveImage(const ClipItem& item);
    Effect useText(const std::optional<std::string>& text, const ClipItem& from, ResultUse use);

    void moveSelection(int step);
    void stepFilter(int step);
    Effect handleBrowse(Key key);
    Effect handleActions(Key key);
    void enterActions();
    void leaveActions();
    void filterActions();
    void moveActionSelection(int step);
    void updateActionPreview();
    const ClipPanelAction* selectedAction() const;

    ClipViewEngine& engine_;
    NowFunction now_;
    ScheduleFunction schedule_;
    Options options_;

    std::string query_;
    ClipFilter filter_ = ClipFilter::all;
    std::optional<std::string> appFilter_;
    std::optional<ClipTimeWord> timeWord_;
    std::vector<const ClipItem*> results_;
    std::vector<ClipPanelRow> rows_;
    std::optional<Uuid> selectedID_;
    PasteStack stack_;
    std::optional<ClipStackSequence> sequence_;
    std::optional<std::string> notice_;
    bool noticeFades_ = false;
    std::uint64_t noticeNumber_ = 0;
    Mode mode_ = Mode::browse;
    std::string actionQuery_;
    ClipActionCategory actionCategory_ = ClipActionCategory::all;
    std::vector<ClipPanelAction> actions_;
    std::optional<std::string> selectedActionID_;
    std::optional<ClipItem> actionItem_;
    std::optional<std::string> actionPreview_;
    std::optional<ClipTargetApp> target_;
    std::vector<ClipPanelAction> allActions_;

    // What it lists: the engine's history, where the engine keeps it, and its own copy of the
    // pins the history lacks; by id.
    std::vector<ClipItem> extraPins_;
    std::unordered_map<Uuid, const ClipItem*> positions_;
    std::unordered_set<Uuid> pinnedIDs_;
    std::unordered_set<Uuid> pinnedOrBoarded_;
    ClipSearchIndex index_;
    std::vector<Subscription> watch_;
    Observable<std::uint64_t> revision_{0};
    std::uint64_t rowsRevision_ = 0;
    // Shared with scheduled fades so that one running after the model is gone does nothing.
    std::shared_ptr<ClipPanelModel*> alive_;
};

template <>
struct EnumNames<ClipPanelModel::Effect> {
    using E = ClipPanelModel::Effect;
    static constexpr std::array values{
        std::pair{E::pasted, std::string_view("pasted")},
        std::pair{E::quickLook, std::string_view("quickLook")},
        std::pair{E::open, std::string_view("open")},
        std::pair{E::reveal, std::string_view("reveal")},
        std::pair{E::saveImage, std::string_view("saveImage")},
        std::pair{E::none, std::string_view("none")},
        std::pair{E::close, std::string_view("close")},
        std::pair{E::copied, std::string_view("copied")},
    };
};

}  // namespace harbex
