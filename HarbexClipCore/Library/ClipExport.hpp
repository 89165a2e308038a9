#pragma once

// "One file with your copies, pins and pinboards."
//
// The export file is one UTF-8 JSON object:
//
//   {
//     "format": "app.harbexapps.clip.export",   // required, exactly this
//     "version": 1,                              // required; readers take versions up to theirs
//     "exported": 732111000.5,                   // seconds since 2001 UTC, informational
//     "library": { ... },                        // the ClipLibrary document, exactly as the
//                                                // store seals it: "version", "items" (newest
//                                                // first, every ClipItem key), "pinboards"
//     "pinned": ["8-4-4-4-12 UUID", ...],        // the pinned copies, in the user's order
//     "images": [                                // the bytes of image copies
//       {"digest": "<ClipImageInfo.digest>", "type": "public.png", "data": "<base64>"}
//     ]
//   }
//
// Every part is checked before anything is used: a file that is not JSON, names another format
// or a newer version, or holds one bad record (item, board, pinned id or image, with bad base64
// too) is refused whole with a message that says where, and changes nothing. Pinned ids and
// images that name no copy of the file are dropped silently: they hurt nothing.
//
// Importing merges: a copy already in the history (the same id, or the same fingerprint) is
// kept as it is and never overwritten; references to it from the file's pins and pinboards point
// at the existing copy. Pinboards merge by id, then by name (ignoring case), taking the file's
// copies that the board lacks at its end; other boards are added. Large files: the text is
// parsed once, records are moved rather than copied, and lookups are hashed, so the work grows
// with the file's size.

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

inline constexpr std::string_view kClipExportFormat = "app.harbexapps.clip.export";
inline constexpr std::int64_t kClipExportVersion = 1;

// The image bytes of one image copy.
struct ClipExportImage {
    std::string digest;
    std::string type;
    Bytes data;

    friend bool operator==(const ClipExportImage&, const ClipExportImage&) = default;
};

// An export file, read and checked.
struct ClipExportFile {
    Date exported;
    ClipLibrary library;
    std::vector<Uuid> pinned;
    std::vector<ClipExportImage> images;

    friend bool operator==(const ClipExportFile&, const ClipExportFile&) = default;
};

// Why a file was refused. `message` is a sentence for the person.
struct ClipImportError {
    enum class Code { notJSON, wrongFormat, newerVersion, badRecord };
    Code code = Code::badRecord;
    std::string message;

    friend bool operator==(const ClipImportError&, const ClipImportError&) = default;
};

// What an import added.
struct ClipImportCounts {
    std::int64_t addedItems = 0;
    std::int64_t keptItems = 0;  // already in the history, left as they were
    std::int64_t addedPinboards = 0;
    std::int64_t mergedPinboards = 0;
    std::int64_t addedPins = 0;

    friend bool operator==(const ClipImportCounts&, const ClipImportCounts&) = default;
};

// The merged library to adopt, the pins to add and the images to store.
struct ClipImportResult {
    ClipLibrary library;
    std::vector<Uuid> newPins;
    std::vector<ClipExportImage> images;  // of the added copies only
    ClipImportCounts counts;
};

// Reads an image copy's bytes, or nothing when they are missing (the copy is exported without
// them).
using ClipImageReader = std::function<std::optional<Bytes>(const ClipImageInfo&)>;

// Told how far a long export or import has come, from 0 to 1; returns false to stop it.
using ClipProgress = std::function<bool(double fraction)>;

// The export file for `library` and `pinned`. Thread: any.
std::string exportClips(const ClipLibrary& library, const std::vector<Uuid>& pinned,
                        const ClipImageReader& readImage, Date now);
// The same, telling `progress` as copies are written (reading images is most of the work);
// nothing when `progress` asked to stop. Thread: any.
std::optional<std::string> exportClips(const ClipLibrary& library, const std::vector<Uuid>& pinned,
                                       const ClipImageReader& readImage, Date now,
                                       const ClipProgress& progress);

// Reads and checks a file. Thread: any.
std::expected<ClipExportFile, ClipImportError> readClipExport(std::string_view text);

// Merges a checked file into `existing` (see the rules above). Pure. Thread: any.
ClipImportResult mergeClipExport(const ClipLibrary& existing, const std::vector<Uuid>& existingPins,
                                 ClipExportFile file);

}  // namespace harbex
