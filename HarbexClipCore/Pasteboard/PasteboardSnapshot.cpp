#include "HarbexClipCore/Pasteboard/PasteboardSnapshot.hpp"

#include "HarbexClipCore/Pasteboard/FileUrls.hpp"

namespace harbex {

std::vector<std::string> PasteboardSnapshot::filePaths() const {
    std::vector<std::string> paths;
    paths.reserve(fileURLs.size());
    for (const auto& url : fileURLs) {
        if (auto path = filePathFromUrl(url)) paths.push_back(std::move(*path));
    }
    return paths;
}

}  // namespace harbex
