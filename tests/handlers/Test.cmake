# Above the seam: of the plug-in only what these tests reach, and no agent to link with. A handler that went round
# ITesselHandler would not link.
add_library(homeloom-archive STATIC $<TARGET_OBJECTS:homeloom-objects>)
set_target_properties(homeloom-archive PROPERTIES LINKER_LANGUAGE CXX)
set_target_properties(test-handlers PROPERTIES LINK_LIBRARIES "")
foreach(stub AgentStub FrameStub Screen)
  target_sources(test-handlers PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/support/${stub}.cpp)
endforeach()
target_include_directories(test-handlers PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/src)
target_link_libraries(test-handlers PRIVATE homeloom-archive homeloom-platform homeloom-options Boost::headers
                      PkgConfig::JSON_GLIB PkgConfig::GLIB Threads::Threads GTest::gmock GTest::gtest_main)
