target_link_libraries(test-tv PRIVATE homeloom-tv-objects util)
target_compile_definitions(test-tv PRIVATE HOMELOOM_TV_PROGRAM="$<TARGET_FILE:homeloom-tv>")
add_dependencies(test-tv homeloom-tv)
