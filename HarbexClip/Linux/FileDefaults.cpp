#include "HarbexClip/Linux/FileDefaults.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>

#include "HarbexClipCore/Support/Digest.hpp"
#include "HarbexKit/SharedFolder.hpp"

namespace harbex {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDateTag = "$date";
constexpr std::string_view kDateReadableKey = "utc";
constexpr std::string_view kBase64Tag = "$base64";
constexpr int kMaxSetAsideNames = 100;
constexpr std::size_t kFlatObjectLimit = 3;

std::string_view textOf(const Bytes& bytes) {
    return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

bool isTagged(const JsonObject& object) {
    return object.contains(kDateTag) || object.contains(kBase64Tag);
}

// Data is nested as JSON only when writing it back out gives exactly the same bytes, so every
// value reads back bit for bit; anything else is kept as base64.
JsonValue fileFormOfData(const Bytes& bytes) {
    if (auto json = parseJson(textOf(bytes))) {
        const bool nestable =
            json->is_array() || (json->is_object() && !isTagged(json->as_object()));
        if (nestable && serializeJson(*json) == textOf(bytes)) return std::move(*json);
    }
    JsonObject tagged;
    tagged.emplace(kBase64Tag, base64Encode(bytes));
    return tagged;
}

// "2025-03-01T09:30:00Z", for the person reading the file; the seconds are what is read back.
std::string readableUtc(Date date) {
    const double unix = std::floor(date.unixSeconds());
    if (!std::isfinite(unix) || unix < -6.2e10 || unix > 2.5e11) return {};
    const std::time_t seconds = static_cast<std::time_t>(unix);
    std::tm parts{};
    if (!::gmtime_r(&seconds, &parts)) return {};
    char buffer[64];
    const std::size_t length = std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return std::string(buffer, length);
}

// Shortest form that reads back as the same double, with ".0" kept on whole numbers so that it
// reads back as a double and not an integer.
void appendDouble(std::string& out, double value) {
    if (!std::isfinite(value)) {
        out += "null";
        return;
    }
    // Plain decimals for the magnitudes settings hold (600.0, a date's seconds), exponents beyond.
    const double magnitude = std::fabs(value);
    const bool plain = magnitude == 0 || (magnitude >= 1e-6 && magnitude < 1e16);
    char buffer[512];
    const auto result =
        plain ? std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed)
              : std::to_chars(buffer, buffer + sizeof buffer, value);
    const std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
    out += text;
    if (text.find_first_of(".eE") == std::string_view::npos) out += ".0";
}

bool isScalar(const JsonValue& value) { return !value.is_object() && !value.is_array(); }

void appendIndent(std::string& out, int depth) {
    out.append(static_cast<std::size_t>(depth) * 2, ' ');
}

void appendValue(std::string& out, const JsonValue& value, int depth);

void appendMember(std::string& out, std::string_view key, const JsonValue& value, int depth) {
    appendIndent(out, depth);
    out += serializeJson(JsonValue(boost::json::string_view(key.data(), key.size())));
    out += ": ";
    appendValue(out, value, depth);
}

void appendValue(std::string& out, const JsonValue& value, int depth) {
    if (value.is_double()) {
        appendDouble(out, value.get_double());
    } else if (const auto* object = value.if_object()) {
        // Small records of plain values (a shortcut, a tagged date) read best on one line.
        const bool flat = object->size() <= kFlatObjectLimit &&
                          std::all_of(object->begin(), object->end(),
                                      [](const auto& member) { return isScalar(member.value()); });
        if (object->empty() || flat) {
            out += "{";
            bool first = true;
            for (const auto& member : *object) {
                if (!first) out += ", ";
                first = false;
                appendMember(out, std::string_view(member.key().data(), member.key().size()),
                             member.value(), 0);
            }
            out += "}";
            return;
        }
        out += "{\n";
        bool first = true;
        for (const auto& member : *object) {
            if (!first) out += ",\n";
            first = false;
            appendMember(out, std::string_view(member.key().data(), member.key().size()),
                         member.value(), depth + 1);
        }
        out += "\n";
        appendIndent(out, depth);
        out += "}";
    } else if (const auto* array = value.if_array()) {
        // Short lists of plain values (kinds, app identifiers) read best on one line.
        const bool flat = std::all_of(array->begin(), array->end(), isScalar);
        if (array->empty() || flat) {
            out += "[";
            for (std::size_t i = 0; i < array->size(); ++i) {
                if (i > 0) out += ", ";
                appendValue(out, (*array)[i], depth);
            }
            out += "]";
            return;
        }
        out += "[\n";
        for (std::size_t i = 0; i < array->size(); ++i) {
            if (i > 0) out += ",\n";
            appendIndent(out, depth + 1);
            appendValue(out, (*array)[i], depth + 1);
        }
        out += "\n";
        appendIndent(out, depth);
        out += "]";
    } else {
        out += serializeJson(value);
    }
}

}  // namespace

std::string formatDefaultsFile(const std::map<std::string, JsonValue, std::less<>>& values) {
    if (values.empty()) return "{}\n";
    std::string out = "{\n";
    bool first = true;
    for (const auto& [key, value] : values) {
        if (!first) out += ",\n";
        first = false;
        appendMember(out, key, value, 1);
    }
    out += "\n}\n";
    return out;
}

fs::path FileDefaults::standardPath() {
    return userConfigFolder() / "harbex-clipboard" / "defaults.json";
}

FileDefaults::FileDefaults(fs::path path) : path_(std::move(path)) { load(); }

void FileDefaults::load() {
    // A writer killed mid-write leaves only a temporary beside the file; the file itself is whole.
    removeStaleTemporaries(path_.parent_path());
    auto bytes = readFile(path_);
    if (!bytes) {
        if (bytes.error().isNotFound()) return;
        openState_ = OpenState::damaged;
        damagedFileInPlace_ = true;
        return;
    }
    auto json = parseJson(textOf(*bytes));
    if (!json || !json->is_object()) {
        openState_ = OpenState::damaged;
        damagedFileInPlace_ = true;
        return;
    }
    for (auto& member : json->as_object()) {
        values_.insert_or_assign(std::string(member.key()), std::move(member.value()));
    }
    openState_ = OpenState::loaded;
}

const JsonValue* FileDefaults::find(std::string_view key) const {
    const auto it = values_.find(key);
    return it == values_.end() ? nullptr : &it->second;
}

std::optional<Bytes> FileDefaults::data(std::string_view key) const {
    const JsonValue* value = find(key);
    if (!value) return std::nullopt;
    if (value->is_array()) return bytesOf(serializeJson(*value));
    const auto* object = value->if_object();
    if (!object) return std::nullopt;
    if (const JsonValue* encoded = object->if_contains(kBase64Tag)) {
        const auto* text = encoded->if_string();
        if (!text) return std::nullopt;
        return base64Decode(std::string_view(text->data(), text->size()));
    }
    if (isTagged(*object)) return std::nullopt;
    return bytesOf(serializeJson(*value));
}

void FileDefaults::setData(std::string_view key, const Bytes& value) {
    put(key, fileFormOfData(value));
}

std::optional<bool> FileDefaults::boolean(std::string_view key) const {
    const JsonValue* value = find(key);
    if (!value || !value->is_bool()) return std::nullopt;
    return value->get_bool();
}

void FileDefaults::setBool(std::string_view key, bool value) { put(key, JsonValue(value)); }

std::optional<Date> FileDefaults::date(std::string_view key) const {
    const JsonValue* value = find(key);
    const auto* object = value ? value->if_object() : nullptr;
    const JsonValue* seconds = object ? object->if_contains(kDateTag) : nullptr;
    if (!seconds) return std::nullopt;
    Date date;
    if (!decodeJson(*seconds, date)) return std::nullopt;
    return date;
}

void FileDefaults::setDate(std::string_view key, Date value) {
    JsonObject tagged;
    tagged.emplace(kDateTag, value.seconds);
    if (auto readable = readableUtc(value); !readable.empty()) {
        tagged.emplace(kDateReadableKey, readable);
    }
    put(key, std::move(tagged));
}

std::optional<std::string> FileDefaults::string(std::string_view key) const {
    const JsonValue* value = find(key);
    if (!value || !value->is_string()) return std::nullopt;
    return std::string(value->get_string());
}

void FileDefaults::setString(std::string_view key, std::string_view value) {
    put(key, JsonValue(boost::json::string_view(value.data(), value.size())));
}

void FileDefaults::remove(std::string_view key) {
    const auto it = values_.find(key);
    if (it == values_.end()) return;
    values_.erase(it);
    writeFile();
}

void FileDefaults::put(std::string_view key, JsonValue value) {
    values_.insert_or_assign(std::string(key), std::move(value));
    writeFile();
}

void FileDefaults::writeFile() {
    if (auto status = createDirectories(path_.parent_path(), 0700); !status) {
        lastWriteError_ = status.error();
        return;
    }
    if (damagedFileInPlace_) {
        // Never write over content we could not read; a person may want it back.
        if (auto status = setDamagedFileAside(); !status) {
            lastWriteError_ = status.error();
            return;
        }
    }
    std::string text;
    try {
        text = formatDefaultsFile(values_);
    } catch (const std::exception&) {
        lastWriteError_ = FileError{"write", path_.string(), ENOMEM};
        return;
    }
    if (auto status = writeFileAtomically(path_, text, 0600); !status) {
        lastWriteError_ = status.error();
        return;
    }
    lastWriteError_.reset();
}

FileStatus FileDefaults::setDamagedFileAside() {
    const fs::path folder = path_.parent_path();
    const std::string stem = path_.stem().string();
    const std::string extension = path_.extension().string();
    for (int n = 1; n <= kMaxSetAsideNames; ++n) {
        std::string name = stem + ".damaged";
        if (n > 1) name += "-" + std::to_string(n);
        const fs::path candidate = folder / (name + extension);
        std::error_code error;
        if (fs::exists(fs::symlink_status(candidate, error))) continue;
        if (::rename(path_.c_str(), candidate.c_str()) != 0) {
            if (errno == ENOENT) {  // gone already: nothing left to keep
                damagedFileInPlace_ = false;
                return {};
            }
            return std::unexpected(FileError{"rename", path_.string(), errno});
        }
        damagedFileInPlace_ = false;
        setAsidePath_ = candidate;
        return {};
    }
    return std::unexpected(FileError{"rename", path_.string(), EEXIST});
}

}  // namespace harbex
