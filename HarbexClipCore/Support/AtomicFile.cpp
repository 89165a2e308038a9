#include "HarbexClipCore/Support/AtomicFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTemporaryMarker = ".harbex-tmp-";

FileError errorFor(std::string operation, const fs::path& path, int code = errno) {
    return FileError{std::move(operation), path.string(), code};
}

// Closes on scope exit; EINTR on close is not retried (Linux frees the descriptor anyway).
struct Descriptor {
    int fd = -1;
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
    int release() { return std::exchange(fd, -1); }
};

bool writeAll(int fd, std::span<const std::uint8_t> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        if (n == 0) {
            errno = EIO;
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

FileStatus syncFolder(const fs::path& folder) {
    Descriptor dir{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (dir.fd < 0) return std::unexpected(errorFor("open", folder));
    if (::fsync(dir.fd) != 0) return std::unexpected(errorFor("fsync", folder));
    return {};
}

}  // namespace

bool FileError::isNotFound() const { return code == ENOENT; }

std::string FileError::description() const {
    std::string verb = operation;
    if (operation == "open" || operation == "read") verb = "read";
    return "couldn\u2019t " + verb + " \u201C" + path + "\u201D: " + std::strerror(code);
}

bool isAtomicTemporaryName(std::string_view fileName) {
    return fileName.starts_with('.') && fileName.find(kTemporaryMarker) != std::string_view::npos;
}

FileStatus writeFileAtomically(const fs::path& path, std::span<const std::uint8_t> bytes,
                               mode_t mode) {
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    const std::string hex = Uuid::random().string().substr(0, 8);
    const fs::path temporary =
        folder / ("." + path.filename().string() + std::string(kTemporaryMarker) + hex);

    Descriptor file{::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode)};
    if (file.fd < 0) return std::unexpected(errorFor("open", temporary));

    auto abandon = [&](const char* operation) {
        FileError error = errorFor(operation, path);
        ::close(file.release());
        ::unlink(temporary.c_str());
        return std::unexpected(std::move(error));
    };
    // The umask may have narrowed the mode given to open.
    if (::fchmod(file.fd, mode) != 0) return abandon("chmod");
    if (!writeAll(file.fd, bytes)) return abandon("write");
    if (::fsync(file.fd) != 0) return abandon("fsync");
    if (::close(file.release()) != 0) {
        FileError error = errorFor("close", path);
        ::unlink(temporary.c_str());
        return std::unexpected(std::move(error));
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        FileError error = errorFor("rename", path);
        ::unlink(temporary.c_str());
        return std::unexpected(std::move(error));
    }
    // The rename is durable only once the folder's entry is on disk.
    return syncFolder(folder);
}

std::expected<Bytes, FileError> readFile(const fs::path& path) {
    Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    if (file.fd < 0) return std::unexpected(errorFor("open", path));
    struct stat info {};
    if (::fstat(file.fd, &info) != 0) return std::unexpected(errorFor("read", path));
    if (S_ISDIR(info.st_mode)) return std::unexpected(errorFor("read", path, EISDIR));
    Bytes bytes;
    bytes.reserve(static_cast<std::size_t>(info.st_size));
    std::uint8_t buffer[64 * 1024];
    for (;;) {
        const ssize_t n = ::read(file.fd, buffer, sizeof buffer);
        if (n < 0) {
            if (errno == EINTR) continue;
            return std::unexpected(errorFor("read", path));
        }
        if (n == 0) break;
        bytes.insert(bytes.end(), buffer, buffer + n);
    }
    return bytes;
}

FileStatus readFileInto(const fs::path& path, std::string& out) {
    out.clear();
    Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    if (file.fd < 0) return std::unexpected(errorFor("open", path));
    struct stat info {};
    if (::fstat(file.fd, &info) != 0) return std::unexpected(errorFor("read", path));
    if (S_ISDIR(info.st_mode)) return std::unexpected(errorFor("read", path, EISDIR));
    // One byte past the size read so far finds the end in the same call; a file that grew since
    // fstat takes further rounds.
    std::size_t room = static_cast<std::size_t>(info.st_size) + 1;
    int readError = 0;
    for (bool atEnd = false; !atEnd;) {
        const std::size_t have = out.size();
        out.resize_and_overwrite(
            std::max(room, have + 64 * 1024), [&](char* data, std::size_t size) {
                std::size_t filled = have;
                while (filled < size) {
                    const ssize_t n = ::read(file.fd, data + filled, size - filled);
                    if (n < 0 && errno == EINTR) continue;
                    if (n <= 0) {
                        readError = n < 0 ? errno : 0;
                        atEnd = true;
                        break;
                    }
                    filled += static_cast<std::size_t>(n);
                }
                return filled;
            });
        room = out.size() * 2;
    }
    if (readError != 0) {
        out.clear();
        return std::unexpected(errorFor("read", path, readError));
    }
    return {};
}

FileStatus createDirectories(const fs::path& folder, mode_t mode) {
    std::error_code error;
    fs::path current;
    for (const auto& part : folder) {
        current /= part;
        if (current.empty() || current == current.root_path()) continue;
        if (::mkdir(current.c_str(), mode) == 0) {
            if (::chmod(current.c_str(), mode) != 0)
                return std::unexpected(errorFor("chmod", current));
        } else if (errno != EEXIST) {
            return std::unexpected(errorFor("mkdir", current));
        }
    }
    struct stat info {};
    if (::stat(folder.c_str(), &info) != 0) return std::unexpected(errorFor("mkdir", folder));
    if (!S_ISDIR(info.st_mode)) return std::unexpected(errorFor("mkdir", folder, ENOTDIR));
    if ((info.st_mode & 07777) != mode && ::chmod(folder.c_str(), mode) != 0) {
        return std::unexpected(errorFor("chmod", folder));
    }
    return {};
}

void removeStaleTemporaries(const fs::path& folder) {
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        if (isAtomicTemporaryName(it->path().filename().string())) {
            std::error_code ignored;
            fs::remove(it->path(), ignored);
        }
    }
}

}  // namespace harbex
