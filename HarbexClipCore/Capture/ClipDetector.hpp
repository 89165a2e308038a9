#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "HarbexClipCore/Capture/ClipImageCodec.hpp"
#include "HarbexClipCore/Capture/DetectedClip.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardSnapshot.hpp"
#include "HarbexClipCore/Support/Date.hpp"

namespace harbex {

enum class SensitiveDetection { off, on };

// What detection needs besides the snapshot.
struct DetectionContext {
    std::optional<std::string> appID;  // the application in front when the copy was made
    std::optional<std::string> appName;
    Date now;
    SensitiveDetection sensitiveDetection = SensitiveDetection::on;
    double sensitiveLifetime = 600;  // seconds a sensitive copy is kept
};

// Turns an accepted snapshot into a history entry. The kind is decided in this order, the first
// that applies winning: files; image; colour; link (a lone URL flavour, or a text that is
// exactly one web address); code; rich text (text with RTF or HTML); text. Every text that goes
// into the entry is made valid UTF-8 first, so the stored history stays valid JSON.
//
// An image that does not decode yields no image entry (detection falls through to the other
// flavours, usually to nothing): its bytes could be neither shown nor trusted to paste.
// Stateless apart from the codec it observes; `detect` may run on any thread.
class ClipDetector {
public:
    // `codec` must outlive the detector.
    explicit ClipDetector(const ClipImageCodec& codec) : codec_(codec) {}

    // Nothing when the snapshot holds nothing worth keeping (no files, no decodable image, no
    // URL and no non-empty text).
    std::optional<DetectedClip> detect(const PasteboardSnapshot& snapshot,
                                       const DetectionContext& context) const;

    // Whether a text is exactly one web address: an http or https URL with a host, or a
    // "www." address, white space at the ends aside.
    static bool isWebAddress(std::string_view text);

private:
    std::optional<DetectedClip> detectImage(const PasteboardSnapshot& snapshot,
                                            const DetectionContext& context) const;

    const ClipImageCodec& codec_;
};

}  // namespace harbex
