target_link_libraries(test-door PRIVATE homeloom-tv-objects PkgConfig::HTTPLIB)
target_compile_definitions(test-door PRIVATE HOMELOOM_TV_PROGRAM="$<TARGET_FILE:homeloom-tv>")
add_dependencies(test-door homeloom-tv)
