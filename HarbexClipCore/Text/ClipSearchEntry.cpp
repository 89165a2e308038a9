#include "HarbexClipCore/Text/ClipSearchEntry.hpp"

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {

namespace {

std::string_view searchedPrefix(const std::string& text) {
    // A character takes at least one byte, so a short text needs no counting.
    if (text.size() <= ClipSearchEntry::kSearchedCharacters) return text;
    return std::string_view(text).substr(
        0, characterPrefixLength(text, ClipSearchEntry::kSearchedCharacters));
}

void appendPiece(std::string& body, std::string_view piece) {
    if (!body.empty()) body.push_back('\n');
    body += piece;
}

}  // namespace

ClipSearchEntry ClipSearchEntry::make(const ClipItem& item) {
    ClipSearchEntry entry;
    entry.id = item.id;
    entry.kind = item.kind;
    entry.date = item.date;
    entry.title = FoldedText::fold(item.title());
    entry.appID = item.appID;
    if (item.appName) entry.appName = FoldedText::fold(*item.appName);

    // Pieces are kept apart by line feeds so that no word runs from one into the next.
    const bool textOnly = item.text && !item.linkTitle && !item.ocrText && !item.filePaths;
    if (textOnly) {
        entry.body = FoldedText::fold(searchedPrefix(*item.text));
        entry.bodyPairs = BytePairSet::of(entry.body.bytes());
        return entry;
    }
    std::string body;
    if (item.text) appendPiece(body, searchedPrefix(*item.text));
    if (item.linkTitle) appendPiece(body, *item.linkTitle);
    if (item.ocrText) appendPiece(body, searchedPrefix(*item.ocrText));
    if (item.filePaths) {
        std::string paths;
        for (const std::string& path : *item.filePaths) {
            if (!paths.empty()) paths.push_back('\n');
            paths += path;
        }
        appendPiece(body, paths);
    }
    entry.body = FoldedText::fold(body);
    entry.bodyPairs = BytePairSet::of(entry.body.bytes());
    return entry;
}

std::size_t ClipSearchEntry::heapBytes() const {
    const std::size_t id = appID && appID->capacity() > 15 ? appID->capacity() + 1 : 0;
    return title.heapBytes() + body.heapBytes() + bodyPairs.heapBytes() + appName.heapBytes() + id;
}

}  // namespace harbex
