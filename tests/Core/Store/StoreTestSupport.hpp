#pragma once

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "HarbexClipCore/Model/ClipLibrary.hpp"

namespace harbex::testing {

// A fresh folder under the temporary folder, removed with everything in it.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "harbex-store-XXXXXX");
        path_ = ::mkdtemp(pattern.data());
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// A library of `count` text copies whose texts carry `tag`.
inline ClipLibrary textLibrary(int count, const std::string& tag = "copy") {
    ClipLibrary library;
    for (int index = 0; index < count; ++index) {
        ClipItem item;
        item.id = Uuid::random();
        item.text = tag + " " + std::to_string(index);
        item.date = Date{700000000.0 + index};
        item.firstCopied = item.date;
        item.fingerprint = fingerprint(ClipKind::text, item.text, std::nullopt, std::nullopt);
        library.items.push_back(std::move(item));
    }
    return library;
}

inline unsigned modeOf(const std::filesystem::path& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return 0;
    return info.st_mode & 07777;
}

inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace harbex::testing
