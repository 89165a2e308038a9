#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"

#include <algorithm>

#include "HarbexClipCore/Pasteboard/FileUrls.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"

namespace harbex {

std::vector<std::string> MemoryPasteboard::types() {
    std::vector<std::string> names;
    names.reserve(flavours_.size());
    for (const auto& flavour : flavours_) names.push_back(flavour.type);
    return names;
}

std::optional<std::string> MemoryPasteboard::markerValue(std::string_view type) {
    return readString(type);
}

std::optional<PasteboardSnapshot> MemoryPasteboard::snapshot() {
    if (flavours_.empty()) return std::nullopt;
    PasteboardSnapshot snapshot;
    snapshot.sourceID = readString(kSourceType);
    snapshot.passwordManagerHint = readString(kPasswordManagerHintType);
    if (auto list = readString(kFileUrlType)) snapshot.fileURLs = urlsFromUriList(*list);
    snapshot.string = readString(kPlainTextType);
    snapshot.rtf = readDeclared(kRtfType);
    snapshot.html = readDeclared(kHtmlType);
    if (!snapshot.string) snapshot.url = readString(kUrlType);
    snapshot.urlTitle = readString(kUrlTitleType);
    if (snapshot.fileURLs.empty() && !snapshot.string) {
        // The first image type on offer is the one read, even when its provider then fails.
        for (std::string_view type : kImageTypes) {
            if (!find(type)) continue;
            if (auto data = readDeclared(type))
                snapshot.image = ClipImagePayload{std::string(type), *data};
            break;
        }
    }
    snapshot.types = types();
    return snapshot;
}

std::int64_t MemoryPasteboard::write(const ClipPayload& payload,
                                     std::optional<std::string_view> sourceID) {
    flavours_.clear();
    ++changeCount_;
    ownerLeft_ = false;
    if (!payload.fileURLs.empty()) {
        put(kFileUrlType, bytesOf(uriListFromUrls(payload.fileURLs)));
    } else if (payload.url && parsesAsUrl(*payload.url)) {
        put(kUrlType, bytesOf(*payload.url));
    }
    if (payload.image) put(payload.image->type, payload.image->data);
    if (payload.text) put(kPlainTextType, bytesOf(*payload.text));
    if (payload.rtf) put(kRtfType, *payload.rtf);
    if (payload.html) put(kHtmlType, *payload.html);
    put(kOwnWriteType, {});
    if (payload.concealed) {
        put(kConcealedType, {});
        put(kPasswordManagerHintType, bytesOf(kPasswordManagerHintSecret));
    }
    if (sourceID) put(kSourceType, bytesOf(*sourceID));
    return changeCount_;
}

std::int64_t MemoryPasteboard::copy(std::vector<Flavour> flavours) {
    flavours_ = std::move(flavours);
    ownerLeft_ = false;
    return ++changeCount_;
}

std::int64_t MemoryPasteboard::ownerQuits() {
    flavours_.clear();
    ownerLeft_ = true;
    return ++changeCount_;
}

bool MemoryPasteboard::ownerQuitsHandingOver() {
    if (keepOnQuit_ == ClipKeepOnQuit::ours && judge_ && judge_(changeCount_)) {
        put(kOwnWriteType, {});
        return true;
    }
    ownerQuits();
    return false;
}

std::int64_t MemoryPasteboard::copyText(std::string_view text) {
    return copy({Flavour::text(kPlainTextType, text)});
}

std::optional<Bytes> MemoryPasteboard::contents(std::string_view type) const {
    const Flavour* flavour = find(type);
    return flavour ? flavour->data : std::nullopt;
}

const MemoryPasteboard::Flavour* MemoryPasteboard::find(std::string_view type) const {
    auto it = std::ranges::find(flavours_, type, &Flavour::type);
    return it == flavours_.end() ? nullptr : &*it;
}

std::optional<Bytes> MemoryPasteboard::read(std::string_view type) {
    // Every ask is recorded, declared or not: asking for an undeclared flavour is the fault the
    // record exists to catch (a lazy provider would produce it).
    requested_.emplace_back(type);
    const Flavour* flavour = find(type);
    return flavour ? flavour->data : std::nullopt;
}

std::optional<Bytes> MemoryPasteboard::readDeclared(std::string_view type) {
    if (!find(type)) return std::nullopt;
    return read(type);
}

std::optional<std::string> MemoryPasteboard::readString(std::string_view type) {
    auto data = readDeclared(type);
    if (!data) return std::nullopt;
    return stringOf(*data);
}

void MemoryPasteboard::put(std::string_view type, Bytes data) {
    // A second flavour of the same type replaces the first, as on a real pasteboard.
    auto it = std::ranges::find(flavours_, type, &Flavour::type);
    if (it != flavours_.end()) {
        it->data = std::move(data);
        return;
    }
    flavours_.push_back(Flavour{std::string(type), std::move(data)});
}

}  // namespace harbex
