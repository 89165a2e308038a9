# The crash writer: a separate process the crash test kills at random moments.
add_executable(ClipStoreCrashWriter
  "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CrashWriter/ClipStoreCrashWriter.cpp")
harbex_target_defaults(ClipStoreCrashWriter)
target_link_libraries(ClipStoreCrashWriter PRIVATE HarbexClipCoreTesting)
add_dependencies(${test_target} ClipStoreCrashWriter)
target_compile_definitions(${test_target} PRIVATE
  HARBEX_CRASH_WRITER="$<TARGET_FILE:ClipStoreCrashWriter>")
