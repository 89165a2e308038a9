#include "HarbexClipCore/Store/SealedBox.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace harbex {
namespace {

const SealKey kKey = *SealKey::fromBytes(Bytes(32, 0x42));

Bytes hexBytes(const std::string& hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

Bytes sealed(std::string_view plain, std::string_view associated = "history") {
    auto result = sealFile(kKey, bytesOf(plain), associated);
    EXPECT_TRUE(result.has_value());
    return result.value_or(Bytes{});
}

// One case of a NIST CAVS response file.
struct GcmVector {
    int count = 0;
    Bytes key, iv, plain, associated, cipherText, tag;
    bool fails = false;
};

// The cases with a 96-bit nonce and a 128-bit tag, the only shape the file format uses.
std::vector<GcmVector> readVectors(const std::string& fileName) {
    const std::filesystem::path path =
        "/usr/lib/python3/dist-packages/cryptography_vectors/ciphers/AES/GCM/" + fileName;
    std::ifstream in(path);
    EXPECT_TRUE(in) << "missing " << path << " (Debian package python3-cryptography-vectors)";
    std::vector<GcmVector> vectors;
    std::map<std::string, std::string> section;
    std::optional<GcmVector> current;
    auto finish = [&] {
        if (current && section["IVlen"] == "96" && section["Taglen"] == "128") {
            vectors.push_back(*current);
        }
        current.reset();
    };
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.starts_with("[")) {
            finish();
            const auto equals = line.find(" = ");
            if (equals != std::string::npos) {
                section[line.substr(1, equals - 1)] =
                    line.substr(equals + 3, line.size() - equals - 4);
            }
            continue;
        }
        if (line == "FAIL" && current) current->fails = true;
        const auto equals = line.find(" = ");
        if (equals == std::string::npos && line.find(" =") == std::string::npos) continue;
        const std::string name = line.substr(0, line.find(" ="));
        const std::string value = equals == std::string::npos ? "" : line.substr(equals + 3);
        if (name == "Count") {
            finish();
            current = GcmVector{};
            current->count = std::stoi(value);
        } else if (current) {
            if (name == "Key") current->key = hexBytes(value);
            if (name == "IV") current->iv = hexBytes(value);
            if (name == "PT") current->plain = hexBytes(value);
            if (name == "AAD") current->associated = hexBytes(value);
            if (name == "CT") current->cipherText = hexBytes(value);
            if (name == "Tag") current->tag = hexBytes(value);
        }
    }
    finish();
    return vectors;
}

Bytes combinedOf(const GcmVector& vector) {
    Bytes combined = vector.iv;
    combined.insert(combined.end(), vector.cipherText.begin(), vector.cipherText.end());
    combined.insert(combined.end(), vector.tag.begin(), vector.tag.end());
    return combined;
}

TEST(SealedBoxTests, SealingMatchesTheNistEncryptionVectors) {
    const auto vectors = readVectors("gcmEncryptExtIV256.rsp");
    ASSERT_EQ(vectors.size(), 375u);
    for (const auto& vector : vectors) {
        const auto key = SealKey::fromBytes(vector.key);
        ASSERT_TRUE(key);
        ASSERT_EQ(vector.iv.size(), kSealNonceSize);
        const auto combined = sealCombined(
            *key, std::span<const std::uint8_t, kSealNonceSize>(vector.iv.data(), kSealNonceSize),
            vector.plain, vector.associated);
        ASSERT_TRUE(combined) << "Count " << vector.count;
        EXPECT_EQ(*combined, combinedOf(vector)) << "Count " << vector.count;
    }
}

TEST(SealedBoxTests, OpeningMatchesTheNistDecryptionVectorsAndRefusesTheFailingOnes) {
    const auto vectors = readVectors("gcmDecrypt256.rsp");
    ASSERT_EQ(vectors.size(), 375u);
    int failing = 0;
    for (const auto& vector : vectors) {
        const auto key = SealKey::fromBytes(vector.key);
        ASSERT_TRUE(key);
        const auto plain = openCombined(*key, combinedOf(vector), vector.associated);
        if (vector.fails) {
            ++failing;
            EXPECT_FALSE(plain) << "Count " << vector.count << " should not open";
        } else {
            ASSERT_TRUE(plain) << "Count " << vector.count;
            EXPECT_EQ(*plain, vector.plain) << "Count " << vector.count;
        }
    }
    EXPECT_GT(failing, 50);
}

TEST(SealedBoxTests, SealedFileIsVersionNonceCipherTextAndTag) {
    for (const std::string& plain : {std::string("a"), std::string(5000, 'x')}) {
        const Bytes file = sealed(plain);
        ASSERT_EQ(file.size(), 1 + kSealNonceSize + plain.size() + kSealTagSize);
        EXPECT_EQ(file[0], 1);
        EXPECT_EQ(openFile(kKey, file, "history"), bytesOf(plain));
    }
}

TEST(SealedBoxTests, ASealedEmptyTextIsTooShortToOpen) {
    const Bytes file = sealed("");
    ASSERT_EQ(file.size(), 29u);
    const auto result = openFile(kKey, file, "history");
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), ClipStoreError::badFormat());
}

TEST(SealedBoxTests, EverySealUsesAFreshNonce) {
    const Bytes first = sealed("same words");
    const Bytes second = sealed("same words");
    EXPECT_NE(Bytes(first.begin() + 1, first.begin() + 13),
              Bytes(second.begin() + 1, second.begin() + 13));
}

struct FormatCase {
    const char* name;
    Bytes file;
    ClipStoreError::Case expected;
};

TEST(SealedBoxTests, FilesOfTheWrongFormOrWithAWrongTagAreRefusedWithTheirReason) {
    Bytes wrongTag = sealed("");
    ASSERT_EQ(wrongTag.size(), 29u + 0u);
    wrongTag.push_back(0);  // 30 bytes: one byte of cipher text, then a tag that cannot match
    Bytes goodThirty = sealed("z");
    ASSERT_EQ(goodThirty.size(), 30u);
    Bytes otherVersion = goodThirty;
    otherVersion[0] = 2;
    Bytes flippedTag = goodThirty;
    flippedTag.back() ^= 0x01;

    const std::vector<FormatCase> cases = {
        {"empty", {}, ClipStoreError::Case::badFormat},
        {"just the version", {1}, ClipStoreError::Case::badFormat},
        {"29 bytes starting with 1", Bytes(29, 1), ClipStoreError::Case::badFormat},
        {"30 bytes starting with 2", otherVersion, ClipStoreError::Case::badFormat},
        {"30 bytes starting with 0",
         [] {
             Bytes b(30, 7);
             b[0] = 0;
             return b;
         }(),
         ClipStoreError::Case::badFormat},
        {"30 bytes starting with 1, tag moved", wrongTag, ClipStoreError::Case::cannotOpen},
        {"30 bytes starting with 1, tag flipped", flippedTag, ClipStoreError::Case::cannotOpen},
        {"30 bytes of ones", Bytes(30, 1), ClipStoreError::Case::cannotOpen},
    };
    EXPECT_TRUE(openFile(kKey, goodThirty, "history"));
    for (const auto& testCase : cases) {
        const auto result = openFile(kKey, testCase.file, "history");
        ASSERT_FALSE(result) << testCase.name;
        EXPECT_EQ(result.error().kind(), testCase.expected) << testCase.name;
    }
}

TEST(SealedBoxTests, ChangingAnySingleByteIsRefused) {
    const Bytes file = sealed("a history of forty bytes, more or less.");
    for (std::size_t index = 0; index < file.size(); ++index) {
        for (std::uint8_t flip : {0x01, 0x80, 0xFF}) {
            Bytes altered = file;
            altered[index] ^= flip;
            const auto result = openFile(kKey, altered, "history");
            ASSERT_FALSE(result) << "byte " << index << " ^ " << int(flip);
            EXPECT_EQ(result.error().kind(), index == 0 ? ClipStoreError::Case::badFormat
                                                        : ClipStoreError::Case::cannotOpen);
        }
    }
}

TEST(SealedBoxTests, EveryTruncationIsRefused) {
    const Bytes file = sealed("a history that is cut short");
    for (std::size_t size = 0; size < file.size(); ++size) {
        EXPECT_FALSE(openFile(kKey, std::span(file).first(size), "history")) << size;
    }
    Bytes longer = file;
    longer.push_back(0);
    EXPECT_FALSE(openFile(kKey, longer, "history"));
}

TEST(SealedBoxTests, AFileOpensOnlyWithItsOwnKeyAndAssociatedData) {
    const Bytes image = sealed("png bytes", "image 1F2E");
    const SealKey otherKey = *SealKey::fromBytes(Bytes(32, 0x43));
    struct Attempt {
        const SealKey* key;
        const char* associated;
        bool opens;
    };
    for (const auto& attempt : std::vector<Attempt>{{&kKey, "image 1F2E", true},
                                                    {&kKey, "history", false},
                                                    {&kKey, "thumbnail 1F2E", false},
                                                    {&kKey, "image 1F2F", false},
                                                    {&kKey, "image 1F2E ", false},
                                                    {&otherKey, "image 1F2E", false}}) {
        const auto result = openFile(*attempt.key, image, attempt.associated);
        EXPECT_EQ(result.has_value(), attempt.opens) << attempt.associated;
        if (!result) {
            EXPECT_EQ(result.error().kind(), ClipStoreError::Case::cannotOpen);
        }
    }
}

// A file laid out for sealing where it lies: room for the header, the plain bytes, room for the
// tag.
Bytes laidOut(const std::string& plain) {
    Bytes file(kSealedOverhead + plain.size(), 0xEE);
    std::copy(plain.begin(), plain.end(), file.begin() + kSealedHeaderSize);
    return file;
}

TEST(SealedBoxTests, SealingAndOpeningInPlaceAgreeWithTheCopyingForms) {
    for (const std::string& plain :
         {std::string("z"), std::string("a history"), std::string(70'000, 'h')}) {
        SCOPED_TRACE(plain.size());
        Bytes inPlace = laidOut(plain);
        ASSERT_TRUE(sealFileInPlace(kKey, inPlace, "history"));
        EXPECT_EQ(inPlace[0], kSealedFormatVersion);
        EXPECT_NE(Bytes(inPlace.begin() + kSealedHeaderSize, inPlace.end() - kSealTagSize),
                  bytesOf(plain));
        EXPECT_EQ(openFile(kKey, inPlace, "history"), bytesOf(plain));

        Bytes copied = sealed(plain);
        const auto opened = openFileInPlace(kKey, copied, "history");
        ASSERT_TRUE(opened);
        EXPECT_EQ(opened->data(), copied.data() + kSealedHeaderSize);
        EXPECT_EQ(Bytes(opened->begin(), opened->end()), bytesOf(plain));
    }
}

TEST(SealedBoxTests, OpeningInPlaceRefusesWhatOpeningRefusesAndWipesFailedPlainText) {
    const Bytes good = sealed("secret words that must not leak");
    struct Case {
        const char* name;
        Bytes file;
        const char* associated;
        ClipStoreError::Case expected;
    };
    Bytes flipped = good;
    flipped[20] ^= 0x01;
    Bytes otherVersion = good;
    otherVersion[0] = 2;
    const std::vector<Case> cases = {
        {"too short", Bytes(29, 1), "history", ClipStoreError::Case::badFormat},
        {"another version", otherVersion, "history", ClipStoreError::Case::badFormat},
        {"altered cipher text", flipped, "history", ClipStoreError::Case::cannotOpen},
        {"other associated data", good, "image x", ClipStoreError::Case::cannotOpen},
    };
    for (auto testCase : cases) {
        const auto result = openFileInPlace(kKey, testCase.file, testCase.associated);
        ASSERT_FALSE(result) << testCase.name;
        EXPECT_EQ(result.error().kind(), testCase.expected) << testCase.name;
        if (testCase.expected == ClipStoreError::Case::cannotOpen) {
            const std::string body(testCase.file.begin() + kSealedHeaderSize,
                                   testCase.file.end() - kSealTagSize);
            EXPECT_EQ(body, std::string(body.size(), '\0')) << testCase.name;
        }
    }
}

TEST(SealedBoxTests, KeysAreMadeOnlyFromExactly32Bytes) {
    EXPECT_FALSE(SealKey::fromBytes(Bytes(31, 1)));
    EXPECT_FALSE(SealKey::fromBytes(Bytes(33, 1)));
    EXPECT_FALSE(SealKey::fromBytes(Bytes{}));
    EXPECT_TRUE(SealKey::fromBytes(Bytes(32, 1)));
    const auto first = SealKey::random();
    const auto second = SealKey::random();
    ASSERT_TRUE(first && second);
    EXPECT_NE(first->bytes, second->bytes);
}

}  // namespace
}  // namespace harbex
