# The end-to-end test runs its own keyring on a private bus, as the keyring tests do.
target_sources(${test_target} PRIVATE "${PROJECT_SOURCE_DIR}/tests/Linux/Keyring/PrivateKeyring.cpp")

# A small Qt program standing in for the application the panel pastes into.
find_package(Qt6 REQUIRED COMPONENTS Widgets)
add_executable(PasteReceiver "${CMAKE_CURRENT_SOURCE_DIR}/App/EndToEnd/Receiver/PasteReceiver.cpp")
harbex_target_defaults(PasteReceiver)
target_link_libraries(PasteReceiver PRIVATE Qt6::Widgets)
add_dependencies(${test_target} PasteReceiver)
target_compile_definitions(${test_target} PRIVATE
  HARBEX_PASTE_RECEIVER="$<TARGET_FILE:PasteReceiver>")

# Start-up, panel, memory and idle CPU figures for scripts/measure-app; built on demand only,
# since a run takes over a minute.
add_executable(AppMeasure EXCLUDE_FROM_ALL
  "${CMAKE_CURRENT_SOURCE_DIR}/App/EndToEnd/Measure/AppMeasure.cpp"
  "${PROJECT_SOURCE_DIR}/bench/Support/SyntheticHistory.cpp"
  "${PROJECT_SOURCE_DIR}/tests/Linux/Keyring/PrivateKeyring.cpp")
harbex_target_defaults(AppMeasure)
target_link_libraries(AppMeasure PRIVATE HarbexLinux HarbexClipCoreTesting)
add_dependencies(AppMeasure harbex-clipboard)
target_compile_definitions(AppMeasure PRIVATE
  HARBEX_APP_PROGRAM="$<TARGET_FILE:harbex-clipboard>")
