# The Wayland pasteboard is a library of its own; its tests start their own headless sway.
target_link_libraries(${test_target} PRIVATE HarbexWayland)
