#pragma once

#include <string>
#include <vector>

#include "HarbexClipCore/Paste/PasteTyper.hpp"

namespace harbex {

// Counts the paste keystrokes it was asked to type. When `journal` is set, each one also appends
// "typePaste" to it, so a test can check the order of calls across several doubles.
class RecordingPasteTyper final : public PasteTyper {
public:
    void typePaste() override {
        ++count;
        if (journal) journal->push_back("typePaste");
    }

    int count = 0;
    std::vector<std::string>* journal = nullptr;
};

}  // namespace harbex
