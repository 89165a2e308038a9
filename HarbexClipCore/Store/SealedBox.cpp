#include "HarbexClipCore/Store/SealedBox.hpp"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <cassert>
#include <climits>
#include <memory>

namespace harbex {

namespace {

struct ContextDeleter {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, ContextDeleter>;

// EVP takes int lengths; images may in principle pass 2 GiB, so feed the cipher in slices.
constexpr std::size_t kSlice = 1u << 30;

std::span<const std::uint8_t> viewOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

bool feedAssociated(EVP_CIPHER_CTX* context, std::span<const std::uint8_t> associated,
                    bool encrypting) {
    int ignored = 0;
    for (std::size_t done = 0; done < associated.size(); done += kSlice) {
        const int size = static_cast<int>(std::min(kSlice, associated.size() - done));
        const int ok =
            encrypting
                ? EVP_EncryptUpdate(context, nullptr, &ignored, associated.data() + done, size)
                : EVP_DecryptUpdate(context, nullptr, &ignored, associated.data() + done, size);
        if (ok != 1) return false;
    }
    return true;
}

// Runs the cipher over `input` into `output` (same length; GCM is a stream mode).
bool transform(EVP_CIPHER_CTX* context, std::span<const std::uint8_t> input, std::uint8_t* output,
               bool encrypting) {
    for (std::size_t done = 0; done < input.size(); done += kSlice) {
        const int size = static_cast<int>(std::min(kSlice, input.size() - done));
        int written = 0;
        const int ok =
            encrypting
                ? EVP_EncryptUpdate(context, output + done, &written, input.data() + done, size)
                : EVP_DecryptUpdate(context, output + done, &written, input.data() + done, size);
        if (ok != 1 || written != size) return false;
    }
    return true;
}

}  // namespace

SealKey::SealKey(std::span<const std::uint8_t, kSealKeySize> key) {
    std::copy(key.begin(), key.end(), bytes.begin());
}

SealKey::~SealKey() { OPENSSL_cleanse(bytes.data(), bytes.size()); }

std::optional<SealKey> SealKey::random() {
    SealKey key;
    if (RAND_bytes(key.bytes.data(), static_cast<int>(key.bytes.size())) != 1) return std::nullopt;
    return key;
}

std::optional<SealKey> SealKey::fromBytes(std::span<const std::uint8_t> bytes) {
    if (bytes.size() != kSealKeySize) return std::nullopt;
    return SealKey(bytes.first<kSealKeySize>());
}

namespace {

// AES-256-GCM over `input` into `output` (the same length; they may be the same bytes) with
// the tag written to `tag`.
bool sealInto(const SealKey& key, std::span<const std::uint8_t, kSealNonceSize> nonce,
              std::span<const std::uint8_t> input, std::uint8_t* output, std::uint8_t* tag,
              std::span<const std::uint8_t> associated) {
    CipherContext context(EVP_CIPHER_CTX_new());
    if (!context) return false;
    if (EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, nullptr, nullptr) != 1 ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, kSealNonceSize, nullptr) != 1 ||
        EVP_EncryptInit_ex(context.get(), nullptr, nullptr, key.bytes.data(), nonce.data()) != 1) {
        return false;
    }
    int finalSize = 0;
    return feedAssociated(context.get(), associated, true) &&
           transform(context.get(), input, output, true) &&
           EVP_EncryptFinal_ex(context.get(), output + input.size(), &finalSize) == 1 &&
           finalSize == 0 &&
           EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, kSealTagSize, tag) == 1;
}

// The inverse of sealInto; `output` may be `input`'s own bytes. On failure `output` is wiped, so
// plain text that failed authentication is never handed out.
bool openInto(const SealKey& key, std::span<const std::uint8_t> nonce,
              std::span<const std::uint8_t> input, std::uint8_t* output,
              std::span<const std::uint8_t> tag, std::span<const std::uint8_t> associated) {
    CipherContext context(EVP_CIPHER_CTX_new());
    if (!context) return false;
    if (EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, nullptr, nullptr) != 1 ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, kSealNonceSize, nullptr) != 1 ||
        EVP_DecryptInit_ex(context.get(), nullptr, nullptr, key.bytes.data(), nonce.data()) != 1) {
        return false;
    }
    // The tag is only read by OpenSSL, but the control call takes a non-const pointer.
    std::array<std::uint8_t, kSealTagSize> expectedTag{};
    std::copy(tag.begin(), tag.end(), expectedTag.begin());
    int finalSize = 0;
    if (!feedAssociated(context.get(), associated, false) ||
        !transform(context.get(), input, output, false) ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, kSealTagSize,
                            expectedTag.data()) != 1 ||
        EVP_DecryptFinal_ex(context.get(), output + input.size(), &finalSize) != 1) {
        OPENSSL_cleanse(output, input.size());
        return false;
    }
    return true;
}

bool randomNonce(std::array<std::uint8_t, kSealNonceSize>& nonce) {
    return RAND_bytes(nonce.data(), static_cast<int>(nonce.size())) == 1;
}

}  // namespace

std::optional<Bytes> sealCombined(const SealKey& key,
                                  std::span<const std::uint8_t, kSealNonceSize> nonce,
                                  std::span<const std::uint8_t> plain,
                                  std::span<const std::uint8_t> associated) {
    Bytes combined(kSealNonceSize + plain.size() + kSealTagSize);
    std::copy(nonce.begin(), nonce.end(), combined.begin());
    std::uint8_t* cipherText = combined.data() + kSealNonceSize;
    if (!sealInto(key, nonce, plain, cipherText, cipherText + plain.size(), associated)) {
        return std::nullopt;
    }
    return combined;
}

std::optional<Bytes> openCombined(const SealKey& key, std::span<const std::uint8_t> combined,
                                  std::span<const std::uint8_t> associated) {
    if (combined.size() < kSealNonceSize + kSealTagSize) return std::nullopt;
    const auto cipherText =
        combined.subspan(kSealNonceSize, combined.size() - kSealNonceSize - kSealTagSize);
    Bytes plain(cipherText.size());
    if (!openInto(key, combined.first(kSealNonceSize), cipherText, plain.data(),
                  combined.last(kSealTagSize), associated)) {
        return std::nullopt;
    }
    return plain;
}

namespace {

// Writes the version byte, a fresh nonce, the ciphertext of `plain` and the tag into `file`,
// which is kSealedOverhead longer than `plain`; `plain` may be the file's own body.
std::expected<void, ClipStoreError> sealInto(const SealKey& key,
                                             std::span<const std::uint8_t> plain,
                                             std::span<std::uint8_t> file,
                                             std::string_view associated) {
    assert(file.size() == plain.size() + kSealedOverhead);
    std::array<std::uint8_t, kSealNonceSize> nonce{};
    if (!randomNonce(nonce)) return std::unexpected(ClipStoreError::cannotOpen());
    file[0] = kSealedFormatVersion;
    std::copy(nonce.begin(), nonce.end(), file.begin() + 1);
    std::uint8_t* cipherText = file.data() + kSealedHeaderSize;
    if (!sealInto(key, nonce, plain, cipherText, cipherText + plain.size(), viewOf(associated))) {
        return std::unexpected(ClipStoreError::cannotOpen());
    }
    return {};
}

}  // namespace

std::expected<Bytes, ClipStoreError> sealFile(const SealKey& key,
                                              std::span<const std::uint8_t> plain,
                                              std::string_view associated) {
    Bytes sealed(plain.size() + kSealedOverhead);
    if (auto status = sealInto(key, plain, sealed, associated); !status) {
        return std::unexpected(status.error());
    }
    return sealed;
}

std::expected<void, ClipStoreError> sealFileInPlace(const SealKey& key,
                                                    std::span<std::uint8_t> file,
                                                    std::string_view associated) {
    assert(file.size() >= kSealedOverhead);
    return sealInto(key, file.subspan(kSealedHeaderSize, file.size() - kSealedOverhead), file,
                    associated);
}

std::expected<Bytes, ClipStoreError> openFile(const SealKey& key,
                                              std::span<const std::uint8_t> sealed,
                                              std::string_view associated) {
    if (!hasSealedForm(sealed)) return std::unexpected(ClipStoreError::badFormat());
    auto plain = openCombined(key, sealed.subspan(1), viewOf(associated));
    if (!plain) return std::unexpected(ClipStoreError::cannotOpen());
    return std::move(*plain);
}

std::expected<std::span<std::uint8_t>, ClipStoreError> openFileInPlace(
    const SealKey& key, std::span<std::uint8_t> sealed, std::string_view associated) {
    if (!hasSealedForm(sealed)) return std::unexpected(ClipStoreError::badFormat());
    const auto body = sealed.subspan(kSealedHeaderSize, sealed.size() - kSealedOverhead);
    if (!openInto(key, sealed.subspan(1, kSealNonceSize), body, body.data(),
                  sealed.last(kSealTagSize), viewOf(associated))) {
        return std::unexpected(ClipStoreError::cannotOpen());
    }
    return body;
}

}  // namespace harbex
