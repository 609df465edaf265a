# The pages for UI developers are compared with the desk TV's table too.
target_link_libraries(test-docs PRIVATE homeloom-tv-objects ${CMAKE_DL_LIBS})
target_compile_definitions(test-docs PRIVATE HOMELOOM_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
