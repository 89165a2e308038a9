#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "HarbexClipCore/Settings/ClipDefaults.hpp"
#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "HarbexClipCore/Support/Json.hpp"

namespace harbex {

// The user defaults on Linux: one JSON file that a person can read and edit, rewritten whole and
// atomically (0600, in a 0700 folder) on every change. Reads come from the copy loaded at open.
//
// The file is an object of keys, sorted. Booleans and strings are plain JSON; data that is itself
// a JSON object or array (the settings record) is nested as it is; dates are
// {"$date": seconds since 2001, "utc": "…"}; other data is {"$base64": "…"}. Entries this store
// does not understand are kept and written back untouched.
//
// A file that cannot be read or parsed gives an empty store; it is left alone until the first
// write, which first renames it to "defaults.damaged.json" (or "-2", "-3", …) beside it, so its
// content is never lost. Main thread only; one instance per file.
class FileDefaults final : public ClipDefaults {
public:
    enum class OpenState { absent, loaded, damaged };

    // $XDG_CONFIG_HOME/harbex-clipboard/defaults.json.
    static std::filesystem::path standardPath();

    // Loads `path` if it exists; creates nothing until the first write.
    explicit FileDefaults(std::filesystem::path path = standardPath());

    std::optional<Bytes> data(std::string_view key) const override;
    void setData(std::string_view key, const Bytes& value) override;
    std::optional<bool> boolean(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;
    std::optional<Date> date(std::string_view key) const override;
    void setDate(std::string_view key, Date value) override;
    std::optional<std::string> string(std::string_view key) const override;
    void setString(std::string_view key, std::string_view value) override;
    void remove(std::string_view key) override;

    const std::filesystem::path& path() const { return path_; }
    OpenState openState() const { return openState_; }
    // Where a damaged file was moved, once a write has done so.
    const std::optional<std::filesystem::path>& setAsidePath() const { return setAsidePath_; }
    // Why the last write did not reach the disk; nothing after a successful one. The values stay
    // in memory either way, and the next write tries again.
    const std::optional<FileError>& lastWriteError() const { return lastWriteError_; }

private:
    void load();
    const JsonValue* find(std::string_view key) const;
    void put(std::string_view key, JsonValue value);
    void writeFile();
    FileStatus setDamagedFileAside();

    std::filesystem::path path_;
    std::map<std::string, JsonValue, std::less<>> values_;
    OpenState openState_ = OpenState::absent;
    bool damagedFileInPlace_ = false;
    std::optional<std::filesystem::path> setAsidePath_;
    std::optional<FileError> lastWriteError_;
};

// The file's text for `values`: indented, keys sorted at the top, nested records in their own
// order, numbers written so that they read back as the same JSON type and value.
std::string formatDefaultsFile(const std::map<std::string, JsonValue, std::less<>>& values);

}  // namespace harbex
