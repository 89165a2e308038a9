#pragma once

#include <QPalette>

#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"

namespace harbex {

// The palette the library window wears for the appearance setting: the system's own for
// `system`, else a light or a dark one with the system's accent colour kept. Thread: main.
QPalette libraryPalette(ClipAppearance appearance, const QPalette& system);

}  // namespace harbex
