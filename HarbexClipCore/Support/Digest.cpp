#include "HarbexClipCore/Support/Digest.hpp"

#include <openssl/evp.h>
#include <openssl/sha.h>

#include <optional>

namespace harbex {

std::string sha256Hex(std::span<const std::uint8_t> bytes) {
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(bytes.data(), bytes.size(), digest);
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out(2 * SHA256_DIGEST_LENGTH, '0');
    for (int i = 0; i < SHA256_DIGEST_LENGTH; ++i) {
        out[2 * i] = kDigits[digest[i] >> 4];
        out[2 * i + 1] = kDigits[digest[i] & 0x0F];
    }
    return out;
}

std::string sha256Hex(std::string_view text) {
    return sha256Hex(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

std::string base64Encode(std::span<const std::uint8_t> bytes) {
    std::string out(4 * ((bytes.size() + 2) / 3), '\0');
    if (bytes.empty()) return out;
    const int written = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()), bytes.data(),
                                        static_cast<int>(bytes.size()));
    out.resize(static_cast<std::size_t>(written));
    return out;
}

namespace {
bool isBase64Character(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
           c == '/';
}
}  // namespace

std::optional<Bytes> base64Decode(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    if (!text.empty() && text.back() == '=') ++padding;
    if (text.size() >= 2 && text[text.size() - 2] == '=') ++padding;
    for (std::size_t i = 0; i < text.size() - padding; ++i) {
        if (!isBase64Character(text[i])) return std::nullopt;
    }
    Bytes out(3 * (text.size() / 4));
    if (text.empty()) return out;
    // EVP_DecodeBlock int length caps one call at 2 GiB, far above any history document.
    const int written =
        EVP_DecodeBlock(out.data(), reinterpret_cast<const unsigned char*>(text.data()),
                        static_cast<int>(text.size()));
    if (written < 0) return std::nullopt;
    out.resize(static_cast<std::size_t>(written) - padding);
    return out;
}

}  // namespace harbex
