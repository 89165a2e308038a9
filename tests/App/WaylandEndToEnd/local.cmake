# The whole program under a headless sway with no X display, its keyring on a private bus.
target_sources(${test_target} PRIVATE "${PROJECT_SOURCE_DIR}/tests/Linux/Keyring/PrivateKeyring.cpp")
add_dependencies(${test_target} harbex-clipboard)
target_compile_definitions(${test_target} PRIVATE
  HARBEX_APP_PROGRAM="$<TARGET_FILE:harbex-clipboard>")
# Grouped with the other Wayland suites as well as with the application's.
file(WRITE "${labels_file}"
  "if(${test_target}_TESTS)\n"
  "  set_tests_properties(\${${test_target}_TESTS} PROPERTIES LABELS \"app;wayland\")\n"
  "endif()\n")
# The window pasted into is the end-to-end tests' Qt receiver, on the Wayland platform.
add_dependencies(${test_target} PasteReceiver)
target_compile_definitions(${test_target} PRIVATE
  HARBEX_PASTE_RECEIVER="$<TARGET_FILE:PasteReceiver>")
