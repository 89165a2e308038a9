#include "HarbexClip/Linux/FileDefaults.hpp"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;

std::string contentsOf(const fs::path& path) {
    auto bytes = readFile(path);
    return bytes ? stringOf(*bytes) : std::string("<unreadable>");
}

void writeText(const fs::path& path, std::string_view text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

mode_t modeOf(const fs::path& path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
    return info.st_mode & 07777;
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Points XDG_CONFIG_HOME at a fresh folder for each test, so the standard path is exercised.
class FileDefaultsTests : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/harbex-defaults-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        root_ = pattern;
        if (const char* old = std::getenv("XDG_CONFIG_HOME")) oldConfigHome_ = old;
        ::setenv("XDG_CONFIG_HOME", (root_ / "config").c_str(), 1);
        path_ = FileDefaults::standardPath();
    }
    void TearDown() override {
        if (oldConfigHome_) {
            ::setenv("XDG_CONFIG_HOME", oldConfigHome_->c_str(), 1);
        } else {
            ::unsetenv("XDG_CONFIG_HOME");
        }
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }

    fs::path root_;
    fs::path path_;
    std::optional<std::string> oldConfigHome_;
};

TEST_F(FileDefaultsTests, TheStandardPathFollowsXdgConfigHome) {
    EXPECT_EQ(path_, root_ / "config" / "harbex-clipboard" / "defaults.json");
}

TEST_F(FileDefaultsTests, OpeningCreatesNothingUntilTheFirstWrite) {
    FileDefaults defaults;
    EXPECT_EQ(defaults.openState(), FileDefaults::OpenState::absent);
    EXPECT_FALSE(fs::exists(root_ / "config"));
    defaults.setBool("clipShowAtLaunch", true);
    EXPECT_TRUE(fs::exists(path_));
    EXPECT_EQ(defaults.lastWriteError(), std::nullopt);
}

TEST_F(FileDefaultsTests, EveryValueSurvivesReopeningBitForBit) {
    ClipSettings settings;
    settings.sensitiveLifetime = 600;  // a whole double must come back as the same bytes
    settings.excludedApps = {"firefox", "name with \"quotes\" and ✓"};
    settings.pausedUntil = Date{7.5e8 + 0.1};
    const std::string settingsText = serializeJson(encodeJson(settings));

    const std::pair<const char*, Bytes> dataValues[] = {
        {"clipSettings", bytesOf(settingsText)},
        {"spaced", bytesOf(R"({ "a": 1 })")},  // not in canonical form: kept as base64
        {"scalar", bytesOf("5")},
        {"tagLookalike", bytesOf(R"({"$date":1})")},
        {"array", bytesOf(serializeJson(*parseJson(R"([1,2.5,"x",{"y":null}])")))},
        {"numbers", bytesOf(serializeJson(JsonArray{1e-7, 1e20, -0.0, 0.1 + 0.2, 5e-324, 1e16,
                                                    -42.0, 9007199254740993LL}))},
        {"binary", Bytes{0xff, 0x00, 0x7b}},
        {"empty", Bytes{}},
    };
    {
        FileDefaults defaults;
        for (const auto& [key, value] : dataValues) defaults.setData(key, value);
        defaults.setBool("clipShowAtLaunch", false);
        defaults.setDate("harbex.launch.relaunchMarkedAt", Date{123456.789});
        defaults.setString("harbex-clip-settings:page", "privacy");
    }
    FileDefaults reopened;
    EXPECT_EQ(reopened.openState(), FileDefaults::OpenState::loaded);
    for (const auto& [key, value] : dataValues) EXPECT_EQ(reopened.data(key), value) << key;
    EXPECT_EQ(reopened.boolean("clipShowAtLaunch"), false);
    EXPECT_EQ(reopened.date("harbex.launch.relaunchMarkedAt"), Date{123456.789});
    EXPECT_EQ(reopened.string("harbex-clip-settings:page"), "privacy");
    EXPECT_EQ(ClipSettingsStore::load(reopened), settings);

    // JSON data is nested, unless nesting would change its bytes or make it look like a tag.
    const auto file = parseJson(contentsOf(path_));
    ASSERT_TRUE(file);
    for (const char* nested : {"clipSettings", "array", "numbers"}) {
        EXPECT_FALSE(file->at(nested).is_string()) << nested;
        EXPECT_FALSE(file->at(nested).is_object() &&
                     file->at(nested).as_object().contains("$base64"))
            << nested;
    }
    for (const char* opaque : {"spaced", "scalar", "tagLookalike", "binary", "empty"}) {
        EXPECT_TRUE(file->at(opaque).at("$base64").is_string()) << opaque;
    }
}

TEST_F(FileDefaultsTests, TheFileIsPlainJsonAPersonCanRead) {
    {
        FileDefaults defaults;
        ClipSettingsStore::save(ClipSettings::defaults(), defaults);
        defaults.setBool("clipShowAtLaunch", true);
        defaults.setDate("harbex.launch.relaunchMarkedAt", Date::fromUnix(1'700'000'000));
        defaults.setData("blob", Bytes{1, 2, 3});
    }
    const std::string text = contentsOf(path_);
    EXPECT_NE(text.find("\n  \"clipSettings\": {\n    \"retention\": \"month\""), std::string::npos)
        << text;
    EXPECT_NE(text.find("\"sensitiveLifetime\": 600.0"), std::string::npos) << text;
    EXPECT_NE(text.find("\"fallback\": {\"keyCode\": 9, \"modifiers\": 9},"), std::string::npos)
        << text;
    EXPECT_NE(text.find("{\"$date\": 721692800.0, \"utc\": \"2023-11-14T22:13:20Z\"}"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\"keptKinds\": [\"text\", \"richText\", \"link\", \"image\"]"),
              std::string::npos)
        << text;
    const auto json = parseJson(text);
    ASSERT_TRUE(json) << text;
    EXPECT_TRUE(json->at("clipShowAtLaunch").is_bool());
    EXPECT_EQ(json->at("harbex.launch.relaunchMarkedAt").at("utc").as_string(),
              "2023-11-14T22:13:20Z");
    EXPECT_EQ(json->at("blob").at("$base64").as_string(), "AQID");
}

TEST_F(FileDefaultsTests, FileAndFolderArePrivateWhateverTheUmask) {
    const mode_t old = ::umask(0);
    {
        FileDefaults defaults;
        defaults.setBool("clipShowAtLaunch", true);
        defaults.setBool("clipShowAtLaunch", false);
    }
    ::umask(old);
    EXPECT_EQ(modeOf(path_), 0600u);
    EXPECT_EQ(modeOf(path_.parent_path()), 0700u);
}

TEST_F(FileDefaultsTests, ADamagedFileGivesAnEmptyStoreAndIsSetAsideOnTheFirstWrite) {
    const std::string damaged[] = {"{\"clipShowAtLaunch\": tru", "[1, 2, 3]"};
    for (std::size_t round = 0; round < std::size(damaged); ++round) {
        writeText(path_, damaged[round]);
        FileDefaults defaults;
        EXPECT_EQ(defaults.openState(), FileDefaults::OpenState::damaged);
        EXPECT_EQ(defaults.boolean("clipShowAtLaunch"), std::nullopt);
        EXPECT_EQ(ClipSettingsStore::load(defaults), ClipSettings::defaults());
        EXPECT_EQ(contentsOf(path_), damaged[round]);  // reading alone changes nothing

        defaults.setBool("clipShowAtLaunch", true);
        const fs::path aside = path_.parent_path() /
                               (round == 0 ? "defaults.damaged.json" : "defaults.damaged-2.json");
        EXPECT_EQ(defaults.setAsidePath(), aside);
        EXPECT_EQ(contentsOf(aside), damaged[round]);
        EXPECT_EQ(FileDefaults().boolean("clipShowAtLaunch"), true);
    }
}

TEST_F(FileDefaultsTests, EntriesItDoesNotUnderstandAreKept) {
    writeText(path_, R"({"other": [1, 2], "badDate": {"$date": "soon"}, "n": 5})");
    FileDefaults defaults;
    EXPECT_EQ(defaults.openState(), FileDefaults::OpenState::loaded);
    EXPECT_EQ(defaults.date("badDate"), std::nullopt);
    EXPECT_EQ(defaults.boolean("n"), std::nullopt);
    defaults.setBool("clipShowAtLaunch", true);
    const auto json = parseJson(contentsOf(path_));
    ASSERT_TRUE(json);
    EXPECT_EQ(serializeJson(json->at("other")), "[1,2]");
    EXPECT_EQ(serializeJson(json->at("badDate")), R"({"$date":"soon"})");
    EXPECT_EQ(json->at("n").as_int64(), 5);
}

TEST_F(FileDefaultsTests, AHandEditedSettingsRecordLoads) {
    writeText(path_, R"({
  "clipSettings": {
    "maxItems": 250,
    "panel": { "fallback": null, "size": "large" }
  }
})");
    const ClipSettings settings = ClipSettingsStore::load(FileDefaults());
    EXPECT_EQ(settings.maxItems, 250);
    EXPECT_EQ(settings.panel.fallback, std::nullopt);
    EXPECT_EQ(settings.panel.size, ClipPanelSize::large);
}

TEST_F(FileDefaultsTests, WritesReplaceTheFileAndLeaveNoTemporaries) {
    fs::create_directories(path_.parent_path());
    // What a writer killed between open and rename leaves behind.
    writeText(path_.parent_path() / ".defaults.json.harbex-tmp-0badf00d", "{\"half\":");
    FileDefaults defaults;
    for (int i = 0; i < 20; ++i) defaults.setString("harbex-clip-settings:page", std::to_string(i));
    defaults.remove("harbex-clip-settings:page");
    EXPECT_EQ(namesIn(path_.parent_path()), std::vector<std::string>{"defaults.json"});
    EXPECT_EQ(contentsOf(path_), "{}\n");
}

TEST_F(FileDefaultsTests, AFailedWriteKeepsTheValueAndTheNextWriteCatchesUp) {
    // A file where the folder should be fails every write, even for root.
    const fs::path blocker = root_ / "blocker";
    writeText(blocker, "not a folder");
    FileDefaults defaults(blocker / "defaults.json");
    defaults.setBool("clipShowAtLaunch", false);
    ASSERT_NE(defaults.lastWriteError(), std::nullopt);
    EXPECT_EQ(defaults.lastWriteError()->code, ENOTDIR);
    EXPECT_EQ(defaults.boolean("clipShowAtLaunch"), false);

    fs::remove(blocker);
    defaults.setString("harbex-clip-settings:page", "about");
    EXPECT_EQ(defaults.lastWriteError(), std::nullopt);
    EXPECT_EQ(FileDefaults(blocker / "defaults.json").boolean("clipShowAtLaunch"), false);
}

}  // namespace
}  // namespace harbex
