#include "HarbexClipCore/Capture/ClipSampler.hpp"

#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"

namespace harbex {

SampleResult ClipSampler::sample(const SampleInputs& inputs) {
    const std::int64_t count = pasteboard_.changeCount();
    if (lastCount_ == count) return SampleResult{};
    lastCount_ = count;
    return look(inputs, CaptureMode::sampled);
}

SampleResult ClipSampler::captureNow(const SampleInputs& inputs) {
    lastCount_ = pasteboard_.changeCount();
    return look(inputs, CaptureMode::forced);
}

SampleResult ClipSampler::look(const SampleInputs& inputs, CaptureMode mode) {
    const std::vector<std::string> types = pasteboard_.types();
    const std::optional<std::string> hint = passwordManagerHint(pasteboard_, types);
    const DeclaredCopy copy{
        types, hint,
        inputs.frontAppID ? std::optional<std::string_view>(*inputs.frontAppID) : std::nullopt};
    if (auto skip = skipBeforeReading(copy, inputs.settings, inputs.now, mode))
        return SampleResult{SampleResult::Kind::skipped, std::move(skip), std::nullopt};
    if (inputs.access != ClipPasteboardAccess::allowed)
        return SampleResult{SampleResult::Kind::notAllowed, std::nullopt, std::nullopt};
    auto snapshot = pasteboard_.snapshot();
    if (!snapshot) return SampleResult{SampleResult::Kind::empty, std::nullopt, std::nullopt};
    return SampleResult{SampleResult::Kind::read, std::nullopt, std::move(snapshot)};
}

CaptureDecision decideCapture(const PasteboardSnapshot& snapshot, const ClipDetector& detector,
                              const DetectionContext& context,
                              const CaptureRuleSettings& settings) {
    const std::optional<std::string_view> hint =
        snapshot.passwordManagerHint
            ? std::optional<std::string_view>(*snapshot.passwordManagerHint)
            : std::nullopt;
    if (isPrivate(snapshot.types, hint))
        return CaptureDecision{std::nullopt, SkipReason::markedPrivate()};
    auto detected = detector.detect(snapshot, context);
    if (!detected) return CaptureDecision{};
    if (auto skip = skipAfterDetection(detected->item.kind, detected->item.text, settings))
        return CaptureDecision{std::nullopt, std::move(skip)};
    return CaptureDecision{std::move(detected), std::nullopt};
}

}  // namespace harbex
