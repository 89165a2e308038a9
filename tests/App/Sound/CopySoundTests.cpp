#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "HarbexClip/App/CopySound.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"

namespace harbex {
namespace {

using testing::EngineRig;
using Flavour = MemoryPasteboard::Flavour;

// Remembers what it was asked to play instead of playing it.
class RecordingSoundPlayer final : public SoundPlayer {
public:
    void play(SoundEvent event) override { played.push_back(event); }
    std::vector<SoundEvent> played;
};

void setSound(ClipEngine& engine, bool on) {
    ClipSettings settings = engine.settings().get();
    settings.window.soundOnCopy = on;
    engine.updateSettings(settings);
}

TEST(CopySoundTests, PlaysOncePerKeptCopyAndNeverForARefusedOne) {
    struct Case {
        const char* name;
        bool soundOn;
        std::function<void(EngineRig&)> act;
        std::size_t plays;
    };
    const std::vector<Case> cases = {
        {"setting off", false, [](EngineRig& rig) { rig.copyAndSample("quiet"); }, 0},
        {"one copy", true, [](EngineRig& rig) { rig.copyAndSample("one"); }, 1},
        {"two copies", true,
         [](EngineRig& rig) {
             rig.copyAndSample("one");
             rig.copyAndSample("two");
         },
         2},
        {"a repeat is kept again", true,
         [](EngineRig& rig) {
             rig.copyAndSample("one");
             rig.copyAndSample("two");
             rig.copyAndSample("one");
         },
         3},
        {"samples without a change", true,
         [](EngineRig& rig) {
             rig.copyAndSample("one");
             rig.engine->sample();
             rig.engine->sample();
         },
         1},
        {"excluded application", true,
         [](EngineRig& rig) {
             ClipSettings settings = rig.engine->settings().get();
             settings.excludedApps = {"org.example.editor"};
             rig.engine->updateSettings(settings);
             rig.copyAndSample("from the excluded app");
         },
         0},
        {"marked private", true,
         [](EngineRig& rig) {
             rig.pasteboard.copy(
                 {Flavour::text(kPlainTextType, "secret"), Flavour::text(kConcealedType, "")});
             rig.engine->sample();
         },
         0},
        {"paused", true,
         [](EngineRig& rig) {
             rig.engine->pauseFor(3600);
             rig.copyAndSample("during the pause");
         },
         0},
        {"kept on purpose while paused", true,
         [](EngineRig& rig) {
             rig.engine->pause(std::nullopt);
             rig.pasteboard.copyText("wanted anyway");
             rig.engine->captureNow();
         },
         0},
        {"after the pause ends", true,
         [](EngineRig& rig) {
             rig.engine->pauseFor(60);
             rig.clock.advance(61);
             rig.copyAndSample("after");
         },
         1},
        {"own copy back to the clipboard, edits and removal", true,
         [](EngineRig& rig) {
             rig.copyAndSample("one");
             const Uuid id = rig.engine->history()->front().id;
             rig.engine->copy(id);
             rig.engine->sample();
             rig.engine->edit(id, "one, edited");
             rig.engine->remove(id);
         },
         1},
        {"switched on between two copies", false,
         [](EngineRig& rig) {
             rig.copyAndSample("before");
             setSound(*rig.engine, true);
             rig.copyAndSample("after");
         },
         1},
        {"switched off between two copies", true,
         [](EngineRig& rig) {
             rig.copyAndSample("before");
             setSound(*rig.engine, false);
             rig.copyAndSample("after");
         },
         1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineRig rig;
        ClipEngine& engine = rig.start();
        engine.sample();
        setSound(engine, c.soundOn);
        RecordingSoundPlayer player;
        CopySound sound(engine, player);
        c.act(rig);
        EXPECT_EQ(player.played, std::vector<SoundEvent>(c.plays, SoundEvent::copyKept));
    }
}

TEST(CopySoundTests, AnImageDecodedInTheBackgroundPlaysWhenItsEntryArrives) {
    testing::EngineRigOptions options;
    options.engine.imageDetection = ClipBackgroundWork::on;
    EngineRig rig(options);
    ClipEngine& engine = rig.start();
    engine.sample();
    setSound(engine, true);
    RecordingSoundPlayer player;
    CopySound sound(engine, player);

    rig.pasteboard.copy({Flavour::bytes(kPngType, PngHeaderImageCodec::pngHeader(40, 30))});
    engine.sample();
    EXPECT_TRUE(player.played.empty()) << "nothing is kept while the image is still pending";
    for (int i = 0; i < 200 && player.played.empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        rig.mainQueue.drain();
    }
    EXPECT_EQ(player.played, std::vector<SoundEvent>{SoundEvent::copyKept});
    EXPECT_EQ(engine.history()->size(), 1u);
}

}  // namespace
}  // namespace harbex
