#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "HarbexClipCore/Support/Json.hpp"
#include "HarbexClipCore/Support/Observable.hpp"
#include "HarbexKit/DocumentNotifier.hpp"
#include "HarbexKit/SharedDocumentFile.hpp"
#include "HarbexKit/SharedFolder.hpp"

namespace harbex {

// A JSON document that several of the family's applications read and write: loaded at start,
// written under an inter-process lock, re-read when another application says it changed.
// `Document` is a value with `==` and JSON coding (encodeJson/decodeJson found by ADL).
// Thread: the owner's (main) thread; observers and `onChange` are called on it.
template <class Document>
class SharedDocument {
public:
    using Change = std::function<void(Document&)>;
    using OnChange = std::function<void(const Document&)>;

    // Loads `folder`/`name` (the fallback when there is none; an unreadable file is set aside)
    // and listens for other applications' changes. `notifier` must outlive this object;
    // `onChange` may be empty. `now` stamps the names of files set aside (system time if empty).
    SharedDocument(std::string name, Document fallback, OnChange onChange,
                   DocumentNotifier& notifier,
                   std::filesystem::path folder = sharedDocumentsFolder(), NowFunction now = {})
        : value_(fallback),
          onChange_(std::move(onChange)),
          fallback_(std::move(fallback)),
          file_(std::move(name), std::move(folder), notifier, std::move(now)) {
        if (auto loaded = readFromDisk()) value_.set(std::move(*loaded));
        observer_ = file_.observe([this] { reload(); });
    }
    SharedDocument(const SharedDocument&) = delete;
    SharedDocument& operator=(const SharedDocument&) = delete;

    const std::string& name() const { return file_.name(); }
    // The document as last read or written.
    const Document& value() const { return value_.get(); }
    // Called after every change of `value`, ours or another application's.
    [[nodiscard]] Subscription subscribe(std::function<void(const Document&)> observer) {
        return value_.subscribe(std::move(observer));
    }
    const Document& fallback() const { return fallback_; }
    const std::filesystem::path& url() const { return file_.url(); }
    const std::filesystem::path& lockURL() const { return file_.lockURL(); }
    std::int64_t revision() const { return file_.revision(); }

    // Applies `change` to the document as it stands on disk (not to the cached value: another
    // application may have written since) and writes the result under the lock, then tells the
    // others. A change that leaves the document as it is writes and posts nothing. `value`
    // becomes what is on disk afterwards. `change` runs while the lock is held: keep it short.
    std::expected<SharedDocumentWrite, FileError> update(const Change& change) {
        Document onDisk = fallback_;
        Document result = fallback_;
        auto outcome = file_.update([&](std::string_view text) { return decodeInto(text, onDisk); },
                                    [&](SharedDocumentRead read) -> std::optional<std::string> {
                                        if (read == SharedDocumentRead::missing) onDisk = fallback_;
                                        result = onDisk;
                                        change(result);
                                        if (result == onDisk) return std::nullopt;
                                        return serializeJsonSorted(encodeJson(result));
                                    });
        if (outcome) value_.setIfChanged(std::move(result));
        return outcome;
    }

    // Re-reads the file after another application changed it; `onChange` hears of a difference.
    // A file that cannot be read for now (I/O) leaves `value` as it is.
    void reload() {
        auto loaded = readFromDisk();
        if (!loaded || *loaded == value_.get()) return;
        value_.set(std::move(*loaded));
        if (onChange_) onChange_(value_.get());
    }

private:
    static bool decodeInto(std::string_view text, Document& out) {
        auto json = parseJson(text);
        if (!json) return false;
        Document decoded{};
        if (!decodeJson(*json, decoded)) return false;
        out = std::move(decoded);
        return true;
    }

    // The document on disk, the fallback when there is none, nothing when it cannot be read.
    std::optional<Document> readFromDisk() {
        Document onDisk = fallback_;
        auto read = file_.read([&](std::string_view text) { return decodeInto(text, onDisk); });
        if (!read) return std::nullopt;
        if (*read == SharedDocumentRead::missing) return fallback_;
        return onDisk;
    }

    Observable<Document> value_;
    OnChange onChange_;
    Document fallback_;
    SharedDocumentFile file_;
    Subscription observer_;
};

}  // namespace harbex
