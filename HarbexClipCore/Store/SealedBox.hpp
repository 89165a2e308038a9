#pragma once

// The sealed-file format shared by the history, images and thumbnails:
//
//   byte 0        format version, always 1
//   bytes 1..12   AES-GCM nonce, fresh and random for every seal
//   13..13+n      ciphertext, as long as the plain data
//   last 16       AES-GCM tag
//
// AES-256-GCM with associated data that names what the file is ("history", "image " + name,
// "thumbnail " + name), so one kind of file cannot be passed off as another. Everything from byte
// 1 on is the usual "combined" form of a sealed box: nonce, ciphertext, tag.
//
// Pure functions; any thread.

#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <span>
#include <string_view>

#include "HarbexClipCore/Store/ClipStoreError.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

inline constexpr std::uint8_t kSealedFormatVersion = 1;
inline constexpr std::size_t kSealKeySize = 32;
inline constexpr std::size_t kSealNonceSize = 12;
inline constexpr std::size_t kSealTagSize = 16;
// What surrounds the sealed data in a file: the version byte and nonce before it, the tag after.
inline constexpr std::size_t kSealedHeaderSize = 1 + kSealNonceSize;
inline constexpr std::size_t kSealedOverhead = kSealedHeaderSize + kSealTagSize;
// The shortest file that is accepted for opening: the version byte, nonce and tag around at
// least one byte, so a sealed empty text (29 bytes) is refused as badFormat.
inline constexpr std::size_t kSealedMinimumSize = 30;

// A 256-bit AES key. Its bytes are wiped when it goes.
struct SealKey {
    std::array<std::uint8_t, kSealKeySize> bytes{};

    SealKey() = default;
    explicit SealKey(std::span<const std::uint8_t, kSealKeySize> key);
    SealKey(const SealKey&) = default;
    SealKey& operator=(const SealKey&) = default;
    ~SealKey();

    // 32 bytes from the system's random source, or nothing when it has none to give.
    static std::optional<SealKey> random();
    // Nothing unless `bytes` is exactly 32 long.
    static std::optional<SealKey> fromBytes(std::span<const std::uint8_t> bytes);
};

// Seals `plain` into a whole sealed file (version byte first) with a fresh random nonce.
// Fails with cannotOpen when the cipher or the random source fails.
std::expected<Bytes, ClipStoreError> sealFile(const SealKey& key,
                                              std::span<const std::uint8_t> plain,
                                              std::string_view associated);

// Seals a whole file where it lies: `file` holds kSealedHeaderSize bytes of room, the plain data,
// then kSealTagSize bytes of room. The version byte, a fresh nonce, the ciphertext (over the plain
// data) and the tag are written into it; no other buffer is used. Fails with cannotOpen when the
// cipher or the random source fails. Requires file.size() >= kSealedOverhead.
std::expected<void, ClipStoreError> sealFileInPlace(const SealKey& key,
                                                    std::span<std::uint8_t> file,
                                                    std::string_view associated);

// Whether `sealed` is long enough and of the one known version: the check that precedes getting
// the key, so a file of the wrong form never reaches the keyring.
inline bool hasSealedForm(std::span<const std::uint8_t> sealed) {
    return sealed.size() >= kSealedMinimumSize && sealed[0] == kSealedFormatVersion;
}

// Opens a whole sealed file: badFormat unless the first byte is 1 and it is at least 30 bytes
// long; cannotOpen for any failure of the cipher (wrong key, wrong associated data, altered bytes).
std::expected<Bytes, ClipStoreError> openFile(const SealKey& key,
                                              std::span<const std::uint8_t> sealed,
                                              std::string_view associated);

// Opens a whole sealed file where it lies: the plain bytes replace the ciphertext, and the span of
// them inside `sealed` is returned. Fails as openFile does; after a failure of the cipher the
// span's bytes are wiped.
std::expected<std::span<std::uint8_t>, ClipStoreError> openFileInPlace(
    const SealKey& key, std::span<std::uint8_t> sealed, std::string_view associated);

// The AES-256-GCM primitives under the file format, with the nonce given by the caller; exposed so
// the cipher can be checked against published test vectors. `sealCombined` returns nonce,
// ciphertext and tag; `openCombined` takes the same and returns the plain bytes, or nothing when
// the input is shorter than nonce and tag or does not authenticate.
std::optional<Bytes> sealCombined(const SealKey& key,
                                  std::span<const std::uint8_t, kSealNonceSize> nonce,
                                  std::span<const std::uint8_t> plain,
                                  std::span<const std::uint8_t> associated);
std::optional<Bytes> openCombined(const SealKey& key, std::span<const std::uint8_t> combined,
                                  std::span<const std::uint8_t> associated);

}  // namespace harbex
