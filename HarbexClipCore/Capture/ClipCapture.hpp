#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "HarbexClipCore/Capture/CaptureRules.hpp"
#include "HarbexClipCore/Capture/ClipDetector.hpp"
#include "HarbexClipCore/Capture/ClipImageCodec.hpp"
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

// The outcome of deciding on one read snapshot: exactly one of `clip` and `skip` is set, or
// neither when there is nothing worth keeping.
struct CaptureDecision {
    std::optional<DetectedClip> clip;
    std::optional<SkipReason> skip;
};

// Every capture rule, in one place and in the order they apply. `sample` remembers the change
// count last seen, and for a new change reads the declared types, applies the rules that need no
// contents (own write, private marker, pause, excluded application, password manager) and only
// then reads a snapshot, so the contents of a refused copy are never read. `decide` takes that
// snapshot to the one decision: the private markers once more (a provider may declare them
// late), the image limit, detection, the kind and length rules and the settings that shape an
// entry. The engine only acts on the decision.
//
// Thread: main, like the pasteboard, except `decide`, which is pure and may run on any thread
// (a large image is decoded on a worker).
class ClipCapture {
public:
    // `pasteboard` and `imageCodec` must outlive the capture.
    ClipCapture(ClipPasteboard& pasteboard, const ClipImageCodec& imageCodec)
        : pasteboard_(pasteboard), detector_(imageCodec) {}

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

    // Whether deciding on `snapshot` means decoding an image, worth a worker thread.
    static bool decodesImage(const PasteboardSnapshot& snapshot,
                             const CaptureRuleSettings& settings);
    CaptureDecision decide(const PasteboardSnapshot& snapshot, const DetectionContext& context,
                           const CaptureRuleSettings& settings) const;

private:
    SampleResult look(const SampleInputs& inputs, CaptureMode mode);

    ClipPasteboard& pasteboard_;
    ClipDetector detector_;
    std::optional<std::int64_t> lastCount_;
};

}  // namespace harbex
