# The probe reads the key in an environment of the test's choosing (no bus, no keyring).
add_executable(KeyringProbe "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/Probe/KeyringProbe.cpp")
harbex_target_defaults(KeyringProbe)
target_link_libraries(KeyringProbe PRIVATE HarbexLinux)
add_dependencies(${test_target} KeyringProbe)
target_compile_definitions(${test_target} PRIVATE HARBEX_KEYRING_PROBE="$<TARGET_FILE:KeyringProbe>")
