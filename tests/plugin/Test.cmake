# The table of all requests is the desk TV's.
target_link_libraries(test-plugin PRIVATE homeloom-tv-objects)
