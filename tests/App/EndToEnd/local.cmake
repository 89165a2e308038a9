# The end-to-end test runs its own keyring on a private bus, as the keyring tests do.
target_sources(${test_target} PRIVATE "${PROJECT_SOURCE_DIR}/tests/Linux/Keyring/PrivateKeyring.cpp")
