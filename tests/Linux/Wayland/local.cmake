# The Wayland pasteboard is a library of its own; its tests start their own headless sway.
target_link_libraries(${test_target} PRIVATE HarbexWayland)
# The paste keystroke is tested against the Qt receiver of the end-to-end tests as well as foot.
if(TARGET HarbexClipQt)
  add_dependencies(${test_target} PasteReceiver)
  target_compile_definitions(${test_target} PRIVATE
    HARBEX_PASTE_RECEIVER="$<TARGET_FILE:PasteReceiver>")
endif()
