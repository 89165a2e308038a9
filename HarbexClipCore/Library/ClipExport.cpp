#include "HarbexClipCore/Library/ClipExport.hpp"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "HarbexClipCore/Support/Json.hpp"
#include "HarbexClipCore/Text/FoldedText.hpp"

namespace harbex {

namespace {

ClipImportError refusal(ClipImportError::Code code, std::string detail) {
    return {code, "This file can’t be imported: " + std::move(detail)};
}

const JsonValue* member(const JsonObject& object, std::string_view key) {
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &found->value();
}

template <class T>
std::expected<void, ClipImportError> decodeMember(const JsonObject& object, std::string_view key,
                                                  T& out) {
    const JsonValue* value = member(object, key);
    if (!value) {
        return std::unexpected(
            refusal(ClipImportError::Code::badRecord, "it has no “" + std::string(key) + "”."));
    }
    if (auto status = decodeJson(*value, out); !status) {
        const JsonError error = prefixJsonError(status.error(), key);
        return std::unexpected(refusal(ClipImportError::Code::badRecord,
                                       "a record is damaged (" + error.description() + ")."));
    }
    return {};
}

JsonValue encodeImage(const ClipExportImage& image) {
    JsonObject object;
    object.emplace("digest", image.digest);
    object.emplace("type", image.type);
    object.emplace("data", encodeJson(image.data));
    return object;
}

}  // namespace

JsonStatus decodeJson(const JsonValue& json, ClipExportImage& out);
JsonStatus decodeJson(const JsonValue& json, ClipExportImage& out) {
    const auto* object = json.if_object();
    if (!object) return std::unexpected(JsonError{{}, "expected an object"});
    for (const auto& [key, target] :
         {std::pair{"digest", &out.digest}, std::pair{"type", &out.type}}) {
        const auto found = object->find(key);
        if (found == object->end()) return std::unexpected(JsonError{key, "missing"});
        if (auto status = decodeJson(found->value(), *target); !status) {
            return std::unexpected(prefixJsonError(status.error(), key));
        }
    }
    const auto data = object->find("data");
    if (data == object->end()) return std::unexpected(JsonError{"data", "missing"});
    if (auto status = decodeJson(data->value(), out.data); !status) {
        return std::unexpected(prefixJsonError(status.error(), "data"));
    }
    return {};
}

std::string exportClips(const ClipLibrary& library, const std::vector<Uuid>& pinned,
                        const ClipImageReader& readImage, Date now) {
    return *exportClips(library, pinned, readImage, now, ClipProgress{});
}

std::optional<std::string> exportClips(const ClipLibrary& library, const std::vector<Uuid>& pinned,
                                       const ClipImageReader& readImage, Date now,
                                       const ClipProgress& progress) {
    // Reading and encoding images takes most of the time; the records and the text take the
    // first and the last tenth.
    const auto told = [&](double fraction) { return !progress || progress(fraction); };
    if (!told(0)) return std::nullopt;
    JsonObject root;
    root.emplace("format", std::string(kClipExportFormat));
    root.emplace("version", kClipExportVersion);
    root.emplace("exported", encodeJson(now));
    root.emplace("library", encodeJson(library));
    root.emplace("pinned", encodeJson(pinned));
    JsonArray images;
    std::unordered_set<std::string> written;
    const double count = static_cast<double>(std::max<std::size_t>(library.items.size(), 1));
    std::size_t done = 0;
    for (const ClipItem& item : library.items) {
        // Asking every 64 copies keeps the callback out of the way of a text-only history.
        if (++done % 64 == 0 && !told(0.1 + 0.8 * static_cast<double>(done) / count)) {
            return std::nullopt;
        }
        if (!item.image || !written.insert(item.image->digest).second) continue;
        if (!told(0.1 + 0.8 * static_cast<double>(done) / count)) return std::nullopt;
        std::optional<Bytes> data = readImage ? readImage(*item.image) : std::nullopt;
        if (!data) continue;
        images.push_back(encodeImage({item.image->digest, item.image->type, std::move(*data)}));
    }
    root.emplace("images", std::move(images));
    if (!told(0.9)) return std::nullopt;
    std::string text = serializeJson(root);
    if (!told(1)) return std::nullopt;
    return text;
}

std::expected<ClipExportFile, ClipImportError> readClipExport(std::string_view text) {
    JsonResult<JsonValue> parsed = parseJson(text);
    if (!parsed || !parsed->is_object()) {
        return std::unexpected(
            refusal(ClipImportError::Code::notJSON, "it isn’t a Harbex Clipboard export."));
    }
    const JsonObject& root = parsed->get_object();
    const JsonValue* format = member(root, "format");
    if (!format || !format->is_string() || format->get_string() != kClipExportFormat) {
        return std::unexpected(
            refusal(ClipImportError::Code::wrongFormat, "it isn’t a Harbex Clipboard export."));
    }
    std::int64_t version = 0;
    if (auto status = decodeMember(root, "version", version); !status) {
        return std::unexpected(status.error());
    }
    if (version < 1 || version > kClipExportVersion) {
        return std::unexpected(refusal(ClipImportError::Code::newerVersion,
                                       "it was made by a newer Harbex Clipboard."));
    }
    ClipExportFile file;
    if (const JsonValue* exported = member(root, "exported"))
        (void)decodeJson(*exported, file.exported);
    if (auto status = decodeMember(root, "library", file.library); !status) {
        return std::unexpected(status.error());
    }
    if (auto status = decodeMember(root, "pinned", file.pinned); !status) {
        return std::unexpected(status.error());
    }
    if (auto status = decodeMember(root, "images", file.images); !status) {
        return std::unexpected(status.error());
    }
    return file;
}

ClipImportResult mergeClipExport(const ClipLibrary& existing, const std::vector<Uuid>& existingPins,
                                 ClipExportFile file) {
    ClipImportResult result;
    std::unordered_map<Uuid, Uuid> finalID;  // the file's id → the id in the merged library
    std::unordered_set<Uuid> existingIDs;
    std::unordered_map<std::string, Uuid> byFingerprint;
    existingIDs.reserve(existing.items.size());
    byFingerprint.reserve(existing.items.size() + file.library.items.size());
    for (const ClipItem& item : existing.items) {
        existingIDs.insert(item.id);
        byFingerprint.emplace(item.fingerprint, item.id);
    }

    std::vector<ClipItem> added;
    std::unordered_set<Uuid> addedIDs;
    std::unordered_set<std::string> addedDigests;
    for (ClipItem& item : file.library.items) {
        if (existingIDs.contains(item.id)) {
            finalID.emplace(item.id, item.id);
            ++result.counts.keptItems;
            continue;
        }
        const auto [known, isNew] = byFingerprint.emplace(item.fingerprint, item.id);
        finalID.emplace(item.id, known->second);
        if (!isNew) {
            if (addedIDs.contains(known->second)) continue;  // a repeat within the file
            ++result.counts.keptItems;
            continue;
        }
        if (item.image) addedDigests.insert(item.image->digest);
        existingIDs.insert(item.id);
        addedIDs.insert(item.id);
        added.push_back(std::move(item));
    }
    result.counts.addedItems = static_cast<std::int64_t>(added.size());

    // Both runs newest first, so one merge keeps the history in order.
    const auto newer = [](const ClipItem& a, const ClipItem& b) { return a.date > b.date; };
    std::ranges::stable_sort(added, newer);
    result.library.version = existing.version;
    result.library.items.reserve(existing.items.size() + added.size());
    std::ranges::merge(existing.items, std::move(added), std::back_inserter(result.library.items),
                       newer);

    result.library.pinboards = existing.pinboards;
    for (Pinboard& board : file.library.pinboards) {
        std::vector<Uuid> ids;
        for (const Uuid& id : board.itemIDs) {
            if (const auto found = finalID.find(id); found != finalID.end()) {
                ids.push_back(found->second);
            } else if (existingIDs.contains(id)) {
                ids.push_back(id);  // a board of the file may name a copy only this history holds
            }
        }
        const FoldedText name = FoldedText::fold(board.name);
        auto match = std::ranges::find(result.library.pinboards, board.id, &Pinboard::id);
        if (match == result.library.pinboards.end()) {
            match = std::ranges::find_if(result.library.pinboards, [&](const Pinboard& mine) {
                return FoldedText::fold(mine.name) == name;
            });
        }
        const bool isNewBoard = match == result.library.pinboards.end();
        if (isNewBoard) {
            board.itemIDs.clear();
            result.library.pinboards.push_back(std::move(board));
            match = result.library.pinboards.end() - 1;
        }
        // A hashed set keeps appending linear however large the board.
        std::unordered_set<Uuid> onBoard(match->itemIDs.begin(), match->itemIDs.end());
        for (const Uuid& id : ids) {
            if (onBoard.insert(id).second) match->itemIDs.push_back(id);
        }
        if (isNewBoard) {
            ++result.counts.addedPinboards;
            continue;
        }
        ++result.counts.mergedPinboards;
    }

    std::unordered_set<Uuid> pinned(existingPins.begin(), existingPins.end());
    for (const Uuid& id : file.pinned) {
        const auto found = finalID.find(id);
        if (found == finalID.end() || !pinned.insert(found->second).second) continue;
        result.newPins.push_back(found->second);
    }
    result.counts.addedPins = static_cast<std::int64_t>(result.newPins.size());

    for (ClipExportImage& image : file.images) {
        if (addedDigests.erase(image.digest) > 0) result.images.push_back(std::move(image));
    }
    return result;
}

}  // namespace harbex
