# A plug-in of its own, for homeloom-tv to load, and no part of the test program.
set(leaky_plugin ${dir}/plugin/LeakyPlugin.cpp)
list(REMOVE_ITEM sources ${leaky_plugin})
set_target_properties(test-tv PROPERTIES SOURCES "${sources}")
add_library(test-tv-leaky-plugin MODULE ${leaky_plugin})
target_link_libraries(test-tv-leaky-plugin PRIVATE homeloom-platform homeloom-options)

target_link_libraries(test-tv PRIVATE homeloom-tv-objects util)
target_compile_definitions(test-tv PRIVATE
  HOMELOOM_TV_PROGRAM="$<TARGET_FILE:homeloom-tv>"
  HOMELOOM_RECORDER="$<TARGET_FILE:homeloom-agent-recorder>"
  HOMELOOM_RECORDINGS_DIR="${CMAKE_SOURCE_DIR}/tests/recordings"
  HOMELOOM_LEAKY_PLUGIN="$<TARGET_FILE:test-tv-leaky-plugin>")
add_dependencies(test-tv homeloom-tv homeloom-agent-recorder test-tv-leaky-plugin)
