#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"

#include <gtest/gtest.h>

#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"

namespace harbex {
namespace {

TEST(PrivacyMarkersTests, EachMarkerAloneIsPrivateAndTheSourceMarkerIsNot) {
    ASSERT_EQ(privateMarkerTypes().size(), 8u);
    for (std::string_view marker : privateMarkerTypes()) {
        const std::vector<std::string> types{"public.utf8-plain-text", std::string(marker)};
        EXPECT_TRUE(isPrivate(types)) << marker;
        // Exact equality: a marker differing in case is someone else's type.
        std::string shouted(marker);
        for (char& c : shouted) c = char(std::toupper(static_cast<unsigned char>(c)));
        EXPECT_FALSE(isPrivate(std::vector<std::string>{shouted})) << shouted;
    }
    EXPECT_FALSE(isPrivate(std::vector<std::string>{std::string(kSourceType)}));
    EXPECT_FALSE(isPrivate(std::vector<std::string>{}));
}

TEST(PrivacyMarkersTests, TheKdeHintIsPrivateOnlyWhenItsValueIsSecret) {
    struct Case {
        bool declared;
        std::optional<std::string_view> value;
        bool expected;
    };
    const Case cases[] = {
        {true, "secret", true},
        {true, "SECRET\n", true},
        {true, std::string_view("secret\0", 7), true},
        {true, "public", false},
        {true, "", false},
        {true, std::nullopt, false},
        {false, "secret", false},  // a value without the declared type is stale
    };
    for (const auto& c : cases) {
        std::vector<std::string> types{"text/plain"};
        if (c.declared) types.emplace_back(kPasswordManagerHintType);
        EXPECT_EQ(isPrivate(types, c.value), c.expected)
            << c.declared << " " << c.value.value_or("(none)");
    }
}

TEST(PrivacyMarkersTests, PasswordManagersByIdentity) {
    ASSERT_EQ(passwordManagerIDs().size(), 15u);
    EXPECT_EQ(passwordManagerIDs()[12], "com.markmcguill.strongbox.mac");
    for (std::string_view id : passwordManagerIDs()) EXPECT_TRUE(isPasswordManager(id)) << id;
    for (std::string_view id : linuxPasswordManagerIDs()) EXPECT_TRUE(isPasswordManager(id)) << id;
    const std::pair<std::string_view, bool> cases[] = {
        {"org.keepassxc.keepassxc", true},
        {"KeePassXC", true},
        {"Bitwarden", true},
        {"1Password", true},
        {"Seahorse", true},
        {"keepass2", true},
        {"com.apple.passwords", false},  // macOS identifiers are exact
        {"org.keepassxc", false},
        {"", false},
        {"org.mozilla.firefox", false},
        {"keepassxc-cli", false},
    };
    for (const auto& [id, expected] : cases) EXPECT_EQ(isPasswordManager(id), expected) << id;
}

}  // namespace
}  // namespace harbex
