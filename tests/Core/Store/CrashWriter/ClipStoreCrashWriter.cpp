// Saves one history after another into a folder until it is killed, printing the generation of
// each save that completed after a first line "ready". The crash test kills it at random moments
// and checks what is left.
//
//   ClipStoreCrashWriter <folder> <first generation>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "HarbexClipCore/Store/ClipStore.hpp"
#include "HarbexClipCore/Testing/MemoryKeyStore.hpp"
#include "tests/Core/Store/CrashWriter/CrashLibrary.hpp"

int main(int argc, char** argv) {
    using namespace harbex;
    if (argc != 3) {
        std::fprintf(stderr, "usage: ClipStoreCrashWriter <folder> <first generation>\n");
        return 2;
    }
    ClipStore store(argv[1],
                    std::make_unique<MemoryKeyStore>(Bytes(kSealKeySize, crash::kKeyByte)));
    // Start-up (loading libraries, building the first library) is slow next to a save; the test
    // starts its clock from here so that its kills land among the saves.
    const std::int64_t first = std::atoll(argv[2]);
    crash::library(first);
    if (::write(STDOUT_FILENO, "ready\n", 6) < 0) return 1;
    for (std::int64_t generation = first;; ++generation) {
        if (auto saved = store.saveNow(crash::library(generation)); !saved) {
            std::fprintf(stderr, "save failed: %s\n", saved.error().description().c_str());
            return 1;
        }
        const std::string line = std::to_string(generation) + "\n";
        if (::write(STDOUT_FILENO, line.data(), line.size()) < 0) return 1;
    }
}
