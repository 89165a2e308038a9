#include "HarbexClipCore/Store/SealedBox.hpp"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
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

// Leaves `prefix` bytes free at the front, so a file's version byte costs no second copy.
std::optional<Bytes> sealWithPrefix(std::size_t prefix, const SealKey& key,
                                    std::span<const std::uint8_t, kSealNonceSize> nonce,
                                    std::span<const std::uint8_t> plain,
                                    std::span<const std::uint8_t> associated) {
    CipherContext context(EVP_CIPHER_CTX_new());
    if (!context) return std::nullopt;
    if (EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, nullptr, nullptr) != 1 ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, kSealNonceSize, nullptr) != 1 ||
        EVP_EncryptInit_ex(context.get(), nullptr, nullptr, key.bytes.data(), nonce.data()) != 1) {
        return std::nullopt;
    }
    Bytes combined(prefix + kSealNonceSize + plain.size() + kSealTagSize);
    std::copy(nonce.begin(), nonce.end(), combined.begin() + static_cast<std::ptrdiff_t>(prefix));
    std::uint8_t* cipherText = combined.data() + prefix + kSealNonceSize;
    int finalSize = 0;
    if (!feedAssociated(context.get(), associated, true) ||
        !transform(context.get(), plain, cipherText, true) ||
        EVP_EncryptFinal_ex(context.get(), cipherText + plain.size(), &finalSize) != 1 ||
        finalSize != 0 ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, kSealTagSize,
                            cipherText + plain.size()) != 1) {
        return std::nullopt;
    }
    return combined;
}

}  // namespace

std::optional<Bytes> sealCombined(const SealKey& key,
                                  std::span<const std::uint8_t, kSealNonceSize> nonce,
                                  std::span<const std::uint8_t> plain,
                                  std::span<const std::uint8_t> associated) {
    return sealWithPrefix(0, key, nonce, plain, associated);
}

std::optional<Bytes> openCombined(const SealKey& key, std::span<const std::uint8_t> combined,
                                  std::span<const std::uint8_t> associated) {
    if (combined.size() < kSealNonceSize + kSealTagSize) return std::nullopt;
    const auto nonce = combined.first(kSealNonceSize);
    const auto cipherText =
        combined.subspan(kSealNonceSize, combined.size() - kSealNonceSize - kSealTagSize);
    const auto tag = combined.last(kSealTagSize);

    CipherContext context(EVP_CIPHER_CTX_new());
    if (!context) return std::nullopt;
    if (EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, nullptr, nullptr) != 1 ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, kSealNonceSize, nullptr) != 1 ||
        EVP_DecryptInit_ex(context.get(), nullptr, nullptr, key.bytes.data(), nonce.data()) != 1) {
        return std::nullopt;
    }
    Bytes plain(cipherText.size());
    // The tag is only read by OpenSSL, but the control call takes a non-const pointer.
    std::array<std::uint8_t, kSealTagSize> expectedTag{};
    std::copy(tag.begin(), tag.end(), expectedTag.begin());
    int finalSize = 0;
    if (!feedAssociated(context.get(), associated, false) ||
        !transform(context.get(), cipherText, plain.data(), false) ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, kSealTagSize,
                            expectedTag.data()) != 1 ||
        EVP_DecryptFinal_ex(context.get(), plain.data() + plain.size(), &finalSize) != 1) {
        // Never hand out plain text that failed authentication.
        OPENSSL_cleanse(plain.data(), plain.size());
        return std::nullopt;
    }
    return plain;
}

std::expected<Bytes, ClipStoreError> sealFile(const SealKey& key,
                                              std::span<const std::uint8_t> plain,
                                              std::string_view associated) {
    std::array<std::uint8_t, kSealNonceSize> nonce{};
    if (RAND_bytes(nonce.data(), static_cast<int>(nonce.size())) != 1) {
        return std::unexpected(ClipStoreError::cannotOpen());
    }
    auto sealed = sealWithPrefix(1, key, nonce, plain, viewOf(associated));
    if (!sealed) return std::unexpected(ClipStoreError::cannotOpen());
    (*sealed)[0] = kSealedFormatVersion;
    return std::move(*sealed);
}

std::expected<Bytes, ClipStoreError> openFile(const SealKey& key,
                                              std::span<const std::uint8_t> sealed,
                                              std::string_view associated) {
    if (!hasSealedForm(sealed)) return std::unexpected(ClipStoreError::badFormat());
    auto plain = openCombined(key, sealed.subspan(1), viewOf(associated));
    if (!plain) return std::unexpected(ClipStoreError::cannotOpen());
    return std::move(*plain);
}

}  // namespace harbex
