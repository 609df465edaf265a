# The pages for UI developers are compared with the desk TV's table too.
target_link_libraries(test-docs PRIVATE homeloom-tv-objects ${CMAKE_DL_LIBS})
target_compile_definitions(test-docs PRIVATE HOMELOOM_SOURCE_DIR="${CMAKE_SOURCE_DIR}")

# What pages for everybody tell to type is typed. Debian's own Python, which alone sees Debian's packages.
add_test(NAME docs.steps COMMAND /usr/bin/python3 -B ${dir}/PagesRunTest.py)
set_tests_properties(docs.steps PROPERTIES TIMEOUT 120
  ENVIRONMENT "HOMELOOM_TV=$<TARGET_FILE:homeloom-tv>;HOMELOOM_SOURCE_DIR=${CMAKE_SOURCE_DIR}")
