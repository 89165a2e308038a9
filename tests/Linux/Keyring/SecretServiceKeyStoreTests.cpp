// The login-keyring key store against a real gnome-keyring on a private session bus, which the
// fixture starts and stops itself.

#include "HarbexClip/Linux/SecretServiceKeyStore.hpp"

#include <gtest/gtest.h>
#include <libsecret/secret.h>

#include <cstdlib>

#include "HarbexClipCore/Store/ClipStore.hpp"
#include "tests/Linux/Keyring/PrivateKeyring.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;

testing::PrivateKeyring* keyring = nullptr;

class KeyringEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        keyring = &keyring_;
        const std::string failure = keyring_.start();
        ASSERT_EQ(failure, "") << "could not start the private keyring";
    }
    void TearDown() override { keyring_.stop(); }

private:
    testing::PrivateKeyring keyring_;
};

[[maybe_unused]] ::testing::Environment* const environment =
    ::testing::AddGlobalTestEnvironment(new KeyringEnvironment);

Bytes keyBytes(std::uint8_t seed) {
    Bytes bytes(kSealKeySize);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<std::uint8_t>(seed + index * 37);  // includes 0x00 and 0xFF
    }
    return bytes;
}

using ReadResult = std::expected<std::optional<Bytes>, KeychainStatus>;
ReadResult found(Bytes bytes) { return std::optional<Bytes>(std::move(bytes)); }
ReadResult nothingStored() { return std::optional<Bytes>(); }
ReadResult failed(KeychainStatus status) { return std::unexpected(status); }

struct ItemView {
    std::string label;
    std::string schema;
    std::string service;
    std::string account;
};

// Our items as the keyring shows them to any client. (gnome-keyring does not keep a secret's
// content type, so that is not visible here.)
std::vector<ItemView> itemsInKeyring() {
    SecretService* service = secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, nullptr);
    GHashTable* attributes = g_hash_table_new(g_str_hash, g_str_equal);
    g_hash_table_insert(attributes, const_cast<char*>("account"), const_cast<char*>("history-key"));
    GList* found = secret_service_search_sync(service, nullptr, attributes, SECRET_SEARCH_ALL,
                                              nullptr, nullptr);
    std::vector<ItemView> views;
    for (GList* link = found; link; link = link->next) {
        auto* item = static_cast<SecretItem*>(link->data);
        ItemView view;
        gchar* label = secret_item_get_label(item);
        view.label = label ? label : "";
        g_free(label);
        GHashTable* itemAttributes = secret_item_get_attributes(item);
        auto attribute = [&](const char* name) {
            const auto* value = static_cast<const char*>(g_hash_table_lookup(itemAttributes, name));
            return std::string(value ? value : "");
        };
        view.schema = attribute("xdg:schema");
        view.service = attribute("service");
        view.account = attribute("account");
        g_hash_table_unref(itemAttributes);
        views.push_back(view);
    }
    g_list_free_full(found, g_object_unref);
    g_hash_table_unref(attributes);
    g_object_unref(service);
    return views;
}

class SecretServiceKeyStoreTests : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(keyring, nullptr);
        ASSERT_TRUE(store.remove()) << "could not clear the item";
    }
    SecretServiceKeyStore store;
};

TEST_F(SecretServiceKeyStoreTests, NoItemReadsAsNothingStoredNotAsAnError) {
    const auto read = store.read();
    ASSERT_TRUE(read) << "status " << read.error();
    EXPECT_FALSE(*read);
}

TEST_F(SecretServiceKeyStoreTests, AWrittenKeyReadsBackAsOneLabelledBinaryItem) {
    ASSERT_TRUE(store.write(keyBytes(1)));
    EXPECT_EQ(store.read(), found(keyBytes(1)));
    const auto items = itemsInKeyring();
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].label, "Harbex Clipboard");
    EXPECT_EQ(items[0].schema, "app.harbexapps.clip.history");
    EXPECT_EQ(items[0].service, "app.harbexapps.clip.history");
    EXPECT_EQ(items[0].account, "history-key");
}

TEST_F(SecretServiceKeyStoreTests, WritingAgainReplacesTheKeyInTheSameItem) {
    ASSERT_TRUE(store.write(keyBytes(1)));
    ASSERT_TRUE(store.write(keyBytes(2)));
    EXPECT_EQ(store.read(), found(keyBytes(2)));
    EXPECT_EQ(itemsInKeyring().size(), 1u);
}

TEST_F(SecretServiceKeyStoreTests, RemovingDeletesTheItemAndRemovingNothingIsFine) {
    ASSERT_TRUE(store.write(keyBytes(3)));
    ASSERT_TRUE(store.remove());
    EXPECT_EQ(store.read(), nothingStored());
    EXPECT_TRUE(itemsInKeyring().empty());
    EXPECT_TRUE(store.remove());
}

TEST_F(SecretServiceKeyStoreTests, ALockedItemIsReportedAsLockedAndNeverReplaced) {
    ASSERT_TRUE(store.write(keyBytes(4)));
    ASSERT_EQ(keyring->lock(), "");
    EXPECT_EQ(store.read(), failed(kKeychainInteractionNotAllowed));
    EXPECT_EQ(store.write(keyBytes(5)), std::unexpected(kKeychainInteractionNotAllowed));
    EXPECT_EQ(store.remove(), std::unexpected(kKeychainInteractionNotAllowed));

    // The store over it keeps the history closed and makes no key.
    const fs::path folder =
        fs::temp_directory_path() / ("harbex-keyring-store-" + std::to_string(::getpid()));
    {
        ClipStore clipStore(folder, std::make_unique<SecretServiceKeyStore>());
        EXPECT_EQ(clipStore.saveNow(ClipLibrary{}).error(),
                  ClipStoreError::keychain(kKeychainInteractionNotAllowed));
    }
    EXPECT_FALSE(fs::exists(folder / "History.sealed"));
    fs::remove_all(folder);

    ASSERT_EQ(keyring->unlock(), "");
    EXPECT_EQ(store.read(), found(keyBytes(4)));
}

TEST_F(SecretServiceKeyStoreTests, ALockedCollectionGetsNoNewItem) {
    ASSERT_EQ(keyring->lock(), "");
    EXPECT_EQ(store.write(keyBytes(6)), std::unexpected(kKeychainInteractionNotAllowed));
    ASSERT_EQ(keyring->unlock(), "");
    EXPECT_EQ(store.read(), nothingStored());
}

TEST_F(SecretServiceKeyStoreTests, AKeyringThatDoesNotAnswerIsGivenUpOnAfterTheTimeout) {
    ASSERT_TRUE(store.write(keyBytes(7)));
    SecretServiceKeyStore impatient({.timeout = std::chrono::milliseconds(300)});
    keyring->pauseDaemon();
    const auto read = impatient.read();
    keyring->resumeDaemon();
    EXPECT_EQ(read, failed(kKeychainInteractionNotAllowed));
    EXPECT_EQ(store.read(), found(keyBytes(7)));
}

TEST_F(SecretServiceKeyStoreTests, AStoreOverTheKeyringMakesOneKeyAndOpensWithItLater) {
    const fs::path folder =
        fs::temp_directory_path() / ("harbex-keyring-store-" + std::to_string(::getpid()));
    ClipLibrary library;
    library.pinboards.push_back(Pinboard{Uuid::random(), "Work", "blue", "briefcase", {}});
    {
        ClipStore clipStore(folder, std::make_unique<SecretServiceKeyStore>());
        ASSERT_TRUE(clipStore.saveNow(library));
    }
    const auto stored = store.read();
    ASSERT_TRUE(stored && *stored);
    EXPECT_EQ((*stored)->size(), kSealKeySize);
    ClipStore reopened(folder, std::make_unique<SecretServiceKeyStore>());
    EXPECT_EQ(reopened.load(), library);
    EXPECT_EQ(store.read(), stored);
    fs::remove_all(folder);
}

struct ProbeCase {
    const char* name;
    std::string busAddress;
    std::string expected;
};

// These need a process whose session bus is not the private one, so they run the probe.
TEST(SecretServiceKeyStoreProbeTests, WithoutABusOrWithoutAKeyringThereIsNoKeyringToAsk) {
    ASSERT_NE(keyring, nullptr);
    const std::string emptyBus = keyring->startEmptyBus();
    ASSERT_FALSE(emptyBus.empty());
    const std::vector<ProbeCase> cases = {
        {"no bus", "unix:path=/nonexistent/harbex-bus", "status -25291\n"},
        {"a bus without a Secret Service", emptyBus, "status -25291\n"},
        {"the private keyring", std::getenv("DBUS_SESSION_BUS_ADDRESS"), ""},
    };
    for (const auto& testCase : cases) {
        const auto result = testing::PrivateKeyring::run(
            {HARBEX_KEYRING_PROBE}, testing::PrivateKeyring::environmentWith(
                                        "DBUS_SESSION_BUS_ADDRESS", testCase.busAddress));
        EXPECT_EQ(result.exitCode, 0) << testCase.name;
        if (testCase.expected.empty()) {
            EXPECT_FALSE(result.output.starts_with("status"))
                << testCase.name << ": " << result.output;
        } else {
            EXPECT_EQ(result.output, testCase.expected) << testCase.name;
        }
    }
}

}  // namespace
}  // namespace harbex
