#include "HarbexKit/SharedDocumentFile.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>

namespace harbex {

namespace {

// Holds an exclusive flock on the lock file for its lifetime. When the file cannot be opened the
// writer goes on unlocked: a missing lock must not stop the user from pinning.
class ExclusiveLock {
public:
    explicit ExclusiveLock(const std::filesystem::path& path) {
        fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (fd_ < 0) return;
        while (::flock(fd_, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;
    ~ExclusiveLock() {
        if (fd_ < 0) return;
        ::flock(fd_, LOCK_UN);
        ::close(fd_);
    }

private:
    int fd_ = -1;
};

std::string timeStamp(Date date) {
    const auto seconds = static_cast<std::time_t>(date.unixSeconds());
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d%02d%02dZ", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
    return text;
}

}  // namespace

SharedDocumentFile::SharedDocumentFile(std::string name, std::filesystem::path folder,
                                       DocumentNotifier& notifier, NowFunction now)
    : name_(std::move(name)),
      folder_(std::move(folder)),
      url_(folder_ / name_),
      lockURL_(folder_ / (name_ + ".lock")),
      notifier_(notifier),
      now_(now ? std::move(now) : NowFunction([] { return SystemClock().now(); })) {}

std::expected<SharedDocumentRead, FileError> SharedDocumentFile::readOnce(const Decode& decode,
                                                                          Repair repair,
                                                                          bool& unreadable) const {
    unreadable = false;
    auto bytes = readFile(url_);
    if (!bytes) {
        if (bytes.error().isNotFound()) return SharedDocumentRead::missing;
        return std::unexpected(bytes.error());
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    if (decode(text)) return SharedDocumentRead::found;
    unreadable = true;
    if (repair == Repair::yes) {
        if (auto moved = setAside(); !moved) return std::unexpected(moved.error());
    }
    return SharedDocumentRead::missing;
}

std::expected<SharedDocumentRead, FileError> SharedDocumentFile::read(const Decode& decode) const {
    bool unreadable = false;
    auto result = readOnce(decode, Repair::no, unreadable);
    if (!result || !unreadable) return result;
    // Another process may have replaced the bad file since; only set aside what is still bad.
    ExclusiveLock lock(lockURL_);
    return readOnce(decode, Repair::yes, unreadable);
}

std::expected<SharedDocumentWrite, FileError> SharedDocumentFile::update(const Decode& decode,
                                                                         const Apply& apply) {
    if (auto status = createDirectories(folder_, 0700); !status) {
        return std::unexpected(status.error());
    }
    {
        ExclusiveLock lock(lockURL_);
        bool unreadable = false;
        auto onDisk = readOnce(decode, Repair::yes, unreadable);
        if (!onDisk) return std::unexpected(onDisk.error());
        const std::optional<std::string> text = apply(*onDisk);
        if (!text) return SharedDocumentWrite::unchanged;
        if (auto status = writeFileAtomically(url_, *text, 0600); !status) {
            return std::unexpected(status.error());
        }
        ++revision_;
    }
    // Posted after unlocking, so a reader woken by it never waits on our lock.
    notifier_.post(name_);
    return SharedDocumentWrite::written;
}

std::expected<std::filesystem::path, FileError> SharedDocumentFile::setAside() const {
    const std::string stamp = timeStamp(now_());
    std::filesystem::path target;
    std::error_code error;
    for (int attempt = 1;; ++attempt) {
        std::string fileName = name_ + " (unreadable " + stamp;
        if (attempt > 1) fileName += " " + std::to_string(attempt);
        fileName += ").json";
        target = folder_ / fileName;
        if (!std::filesystem::exists(target, error)) break;
    }
    if (::rename(url_.c_str(), target.c_str()) != 0) {
        return std::unexpected(FileError{"rename", url_.string(), errno});
    }
    return target;
}

Subscription SharedDocumentFile::observe(std::function<void()> observer) {
    return notifier_.subscribe(name_, std::move(observer));
}

}  // namespace harbex
