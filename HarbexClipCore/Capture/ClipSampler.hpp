#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "HarbexClipCore/Capture/CaptureRules.hpp"
#include "HarbexClipCore/Capture/ClipDetector.hpp"
#include "HarbexClipCore/Capture/SkipReason.hpp"
#include "HarbexClipCore/Pasteboard/ClipPasteboard.hpp"

namespace harbex {

// What one look at the pasteboard found.
struct SampleResult {
    enum class Kind {
        unchanged,   // the change count has not moved since the last look
        skipped,     // a rule refused the copy before its contents were read (`skip`)
        notAllowed,  // the system does not let us read other applications' copies
        empty,       // the pasteboard declares nothing
        read,        // `snapshot` holds the contents, to be captured
    };
    Kind kind = Kind::unchanged;
    std::optional<SkipReason> skip;
    std::optional<PasteboardSnapshot> snapshot;

    bool operator==(const SampleResult&) const = default;
};

// What the inputs of one look are, taken by the engine at the moment of sampling.
struct SampleInputs {
    std::optional<std::string> frontAppID;  // the source application of the copy, if known
    CaptureRuleSettings settings;
    Date now;
    ClipPasteboardAccess access = ClipPasteboardAccess::allowed;
};

// The first half of the engine's sampling: it remembers the change count last seen, and for a
// new change reads the declared types, applies the rules that need no contents (own write,
// private marker, pause, excluded application, password manager) and only then reads a
// snapshot. Contents of a refused copy are never read. Main thread, like the pasteboard.
class ClipSampler {
public:
    // `pasteboard` must outlive the sampler.
    explicit ClipSampler(ClipPasteboard& pasteboard) : pasteboard_(pasteboard) {}

    std::optional<std::int64_t> lastCount() const { return lastCount_; }
    // Remembers `count` as seen: the engine's own writes, and the count when the history opens.
    void setLastCount(std::int64_t count) { lastCount_ = count; }
    // Takes the pasteboard's current count as seen, so what is there now is never captured.
    void consumeCurrentChange() { lastCount_ = pasteboard_.changeCount(); }

    // One timer tick: nothing when the count has not moved; otherwise the count is consumed
    // (a refused or unread copy is never captured later) and the change judged.
    SampleResult sample(const SampleInputs& inputs);

    // "Capture Now": reads whatever is there, even when its count was seen, while paused or from
    // an excluded application; own writes and private copies are still refused.
    SampleResult captureNow(const SampleInputs& inputs);

private:
    SampleResult look(const SampleInputs& inputs, CaptureMode mode);

    ClipPasteboard& pasteboard_;
    std::optional<std::int64_t> lastCount_;
};

// The capture step for one read snapshot: the private markers once more (a provider may declare
// them late), detection, then the kind and length rules. Exactly one of `clip` and `skip` is set,
// or neither when there is nothing worth keeping. Pure; may run on any thread.
struct CaptureDecision {
    std::optional<DetectedClip> clip;
    std::optional<SkipReason> skip;
};
CaptureDecision decideCapture(const PasteboardSnapshot& snapshot, const ClipDetector& detector,
                              const DetectionContext& context, const CaptureRuleSettings& settings);

}  // namespace harbex
