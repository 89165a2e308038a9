#include "HarbexClipCore/Capture/ClipCapture.hpp"

#include <algorithm>

#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"

namespace harbex {

SampleResult ClipCapture::sample(const SampleInputs& inputs) {
    const std::int64_t count = pasteboard_.changeCount();
    if (lastCount_ == count) return SampleResult{};
    lastCount_ = count;
    return look(inputs, CaptureMode::sampled);
}

SampleResult ClipCapture::captureNow(const SampleInputs& inputs) {
    lastCount_ = pasteboard_.changeCount();
    return look(inputs, CaptureMode::forced);
}

SampleResult ClipCapture::look(const SampleInputs& inputs, CaptureMode mode) {
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

bool ClipCapture::decodesImage(const PasteboardSnapshot& snapshot,
                               const CaptureRuleSettings& settings) {
    return snapshot.image && std::int64_t(snapshot.image->data.size()) <= settings.imageLimit;
}

CaptureDecision ClipCapture::decide(const PasteboardSnapshot& read, const DetectionContext& context,
                                    const CaptureRuleSettings& settings) const {
    const std::optional<std::string_view> hint =
        read.passwordManagerHint ? std::optional<std::string_view>(*read.passwordManagerHint)
                                 : std::nullopt;
    if (isPrivate(read.types, hint))
        return CaptureDecision{std::nullopt, SkipReason::markedPrivate()};

    const std::size_t textLimit = std::size_t(std::max<std::int64_t>(settings.textLimit, 0));
    if (read.textOverLimit || (read.string && read.string->size() > textLimit))
        return CaptureDecision{std::nullopt, SkipReason::tooLarge()};

    const PasteboardSnapshot* snapshot = &read;
    PasteboardSnapshot trimmed;
    const bool imageOver = read.image && !decodesImage(read, settings);
    const bool rtfOver = read.rtf && read.rtf->size() > textLimit;
    const bool htmlOver = read.html && read.html->size() > textLimit;
    if (imageOver || rtfOver || htmlOver) {
        // A form over its limit is not kept; whatever else the copy offers still may be.
        trimmed = read;
        if (imageOver) trimmed.image.reset();
        if (rtfOver) trimmed.rtf.reset();
        if (htmlOver) trimmed.html.reset();
        snapshot = &trimmed;
    }
    auto detected = detector_.detect(*snapshot, context);
    if (!detected) return CaptureDecision{};
    if (auto skip = skipAfterDetection(detected->item.kind, detected->item.text, settings))
        return CaptureDecision{std::nullopt, std::move(skip)};
    if (auto skip = shapeForSettings(*detected, *snapshot, settings))
        return CaptureDecision{std::nullopt, std::move(skip)};
    return CaptureDecision{std::move(detected), std::nullopt};
}

}  // namespace harbex
