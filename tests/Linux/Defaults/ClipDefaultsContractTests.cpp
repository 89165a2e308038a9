// One contract for every ClipDefaults: the in-memory double and the file-backed store must agree.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <functional>
#include <memory>

#include "HarbexClip/Linux/FileDefaults.hpp"
#include "HarbexClipCore/Testing/MemoryDefaults.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;

struct Maker {
    const char* name;
    std::function<std::unique_ptr<ClipDefaults>(const fs::path& folder)> make;
};

class ClipDefaultsContractTests : public testing::TestWithParam<Maker> {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/harbex-defaults-contract-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        folder_ = pattern;
        defaults_ = GetParam().make(folder_);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    fs::path folder_;
    std::unique_ptr<ClipDefaults> defaults_;
};

TEST_P(ClipDefaultsContractTests, EachTypeReadsBackWhatWasSet) {
    ClipDefaults& d = *defaults_;
    d.setData("data", Bytes{0, 1, 2, 255});
    d.setData("json", bytesOf(R"({"a":[1,2]})"));
    d.setData("empty", Bytes{});
    d.setBool("flag", false);
    d.setDate("when", Date{-12.5});
    d.setString("page", "pinboards");
    EXPECT_EQ(d.data("data"), (Bytes{0, 1, 2, 255}));
    EXPECT_EQ(d.data("json"), bytesOf(R"({"a":[1,2]})"));
    EXPECT_EQ(d.data("empty"), Bytes{});
    EXPECT_EQ(d.boolean("flag"), false);
    EXPECT_EQ(d.date("when"), Date{-12.5});
    EXPECT_EQ(d.string("page"), "pinboards");
}

TEST_P(ClipDefaultsContractTests, AValueOfAnotherTypeOrAnAbsentKeyReadsAsNothing) {
    ClipDefaults& d = *defaults_;
    d.setBool("flag", true);
    d.setDate("when", Date{1});
    d.setString("text", "true");
    d.setData("data", bytesOf("{}"));
    EXPECT_EQ(d.data("flag"), std::nullopt);
    EXPECT_EQ(d.string("flag"), std::nullopt);
    EXPECT_EQ(d.data("when"), std::nullopt);
    EXPECT_EQ(d.boolean("text"), std::nullopt);
    EXPECT_EQ(d.data("text"), std::nullopt);
    EXPECT_EQ(d.date("data"), std::nullopt);
    EXPECT_EQ(d.boolean("missing"), std::nullopt);
}

TEST_P(ClipDefaultsContractTests, SettingReplacesAndRemovingForgets) {
    ClipDefaults& d = *defaults_;
    d.setBool("key", true);
    d.setString("key", "now a string");
    EXPECT_EQ(d.boolean("key"), std::nullopt);
    EXPECT_EQ(d.string("key"), "now a string");
    d.remove("key");
    d.remove("never-set");
    EXPECT_EQ(d.string("key"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Stores, ClipDefaultsContractTests,
    testing::Values(Maker{"Memory",
                          [](const fs::path&) -> std::unique_ptr<ClipDefaults> {
                              return std::make_unique<MemoryDefaults>();
                          }},
                    Maker{"File",
                          [](const fs::path& folder) -> std::unique_ptr<ClipDefaults> {
                              return std::make_unique<FileDefaults>(folder / "defaults.json");
                          }}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace harbex
