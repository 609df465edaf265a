# A plug-in and its host, which run in a process of their own: this program has the JSON library anyway.
set(dump_module ${dir}/module/DumpModule.cpp)
set(dump_host ${dir}/module/DumpHost.cpp)
list(REMOVE_ITEM sources ${dump_module} ${dump_host})
set_target_properties(test-utils PROPERTIES SOURCES "${sources}")

add_library(test-utils-dump-module MODULE ${dump_module})
target_link_libraries(test-utils-dump-module PRIVATE homeloom-objects homeloom-platform homeloom-agent homeloom-options)
target_link_options(test-utils-dump-module PRIVATE -Wl,--version-script=${dir}/module/exports.map)
add_executable(test-utils-dump-host ${dump_host})
target_link_libraries(test-utils-dump-host PRIVATE homeloom-options ${CMAKE_DL_LIBS})

target_compile_definitions(test-utils PRIVATE
  HOMELOOM_DUMP_HOST="$<TARGET_FILE:test-utils-dump-host>"
  HOMELOOM_DUMP_MODULE="$<TARGET_FILE:test-utils-dump-module>")
add_dependencies(test-utils test-utils-dump-host test-utils-dump-module)
