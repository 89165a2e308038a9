// Reads the history key once and prints what came back: "missing", "found <byte count>" or
// "status <code>". The keyring tests run it in environments a test process cannot switch to once
// it has a session bus of its own (no bus at all, a bus without a Secret Service).

#include <cstdio>

#include "HarbexClip/Linux/SecretServiceKeyStore.hpp"

int main() {
    harbex::SecretServiceKeyStore store({.timeout = std::chrono::milliseconds(5000)});
    const auto read = store.read();
    if (!read) {
        std::printf("status %d\n", static_cast<int>(read.error()));
    } else if (!*read) {
        std::printf("missing\n");
    } else {
        std::printf("found %zu\n", (*read)->size());
    }
    return 0;
}
