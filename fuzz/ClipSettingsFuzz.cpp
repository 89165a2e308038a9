// Settings come from a file a person may edit: whatever it holds must load without a crash, and
// what loads must save and load back to the same record.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"
#include "HarbexClipCore/Testing/MemoryDefaults.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbex;
    MemoryDefaults defaults;
    defaults.setData(ClipSettingsStore::kSettingsKey, Bytes(data, data + size));
    const ClipSettings loaded = ClipSettingsStore::load(defaults);

    const auto writes = defaults.writeCount();
    ClipSettingsStore::save(loaded, defaults);
    if (defaults.writeCount() == writes) std::abort();  // a loaded record must always be savable
    if (!(ClipSettingsStore::load(defaults) == loaded)) std::abort();
    return 0;
}
