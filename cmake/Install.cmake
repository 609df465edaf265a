# Where things go: `cmake --install` and the Debian package. The desk TV finds the plug-in and the homes relative to
# itself, so the tree works wherever it's put; build trees have the same shape.
set(HOMELOOM_PRIVATE_DIR lib/homeloom)
set(HOMELOOM_DATA_DIR ${CMAKE_INSTALL_DATADIR}/homeloom)
set(HOMELOOM_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/homeloom)

install(TARGETS homeloom LIBRARY DESTINATION ${HOMELOOM_PRIVATE_DIR})
if(HOMELOOM_RECORDER)
  install(TARGETS homeloom-agent-recorder LIBRARY DESTINATION ${HOMELOOM_PRIVATE_DIR})
endif()
if(NOT HOMELOOM_DESK)
  # The TV's loader knows where its own libraries are.
  return()
endif()

install(TARGETS homeloom-platform homeloom-agent LIBRARY DESTINATION ${HOMELOOM_PRIVATE_DIR})
install(TARGETS homeloom-hub-app RUNTIME DESTINATION ${HOMELOOM_PRIVATE_DIR})
install(TARGETS homeloom-tv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(HOMELOOM_SWEEP)
  install(TARGETS homeloom-sweep RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES sweep/standard.script DESTINATION ${HOMELOOM_DATA_DIR}/sweep)
  install(FILES ${HOMELOOM_SYSTEM_DIR}/homeloom-sweep.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  set_target_properties(homeloom-sweep PROPERTIES INSTALL_RPATH "$ORIGIN/../${HOMELOOM_PRIVATE_DIR}")
endif()
install(DIRECTORY homes/ DESTINATION ${HOMELOOM_DATA_DIR}/homes FILES_MATCHING PATTERN *.json)
install(DIRECTORY ${HOMELOOM_GENERATED_DIR}/ DESTINATION ${HOMELOOM_DATA_DIR} FILES_MATCHING PATTERN *.json
        PATTERN *.d.ts)
install(DIRECTORY web DESTINATION ${HOMELOOM_DATA_DIR} PATTERN jsconfig.json EXCLUDE)
install(FILES clients/js/homeloom.js clients/js/homeloom.d.ts clients/js/package.json clients/js/README.md
        DESTINATION ${HOMELOOM_DATA_DIR}/js)
install(DIRECTORY clients/python/homeloom DESTINATION lib/python3/dist-packages FILES_MATCHING PATTERN *.py PATTERN py.typed)
install(FILES ${HOMELOOM_SYSTEM_DIR}/homeloom-tv.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${HOMELOOM_SYSTEM_DIR}/homeloom-home.5.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES ${HOMELOOM_SYSTEM_DIR}/homeloom-tv
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${HOMELOOM_SYSTEM_DIR}/_homeloom-tv
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES packaging/homeloom-tv.service DESTINATION ${HOMELOOM_DOC_DIR}/examples)
install(FILES packaging/copyright README.md CHANGELOG.md DESTINATION ${HOMELOOM_DOC_DIR})
install(DIRECTORY docs/ DESTINATION ${HOMELOOM_DOC_DIR} FILES_MATCHING PATTERN *.md PATTERN images EXCLUDE)
file(MAKE_DIRECTORY ${HOMELOOM_SYSTEM_DIR})
add_custom_command(OUTPUT ${HOMELOOM_SYSTEM_DIR}/changelog.gz
  COMMAND gzip -9nc ${CMAKE_CURRENT_SOURCE_DIR}/packaging/changelog > ${HOMELOOM_SYSTEM_DIR}/changelog.gz
  DEPENDS packaging/changelog VERBATIM)
add_custom_target(homeloom-changelog ALL DEPENDS ${HOMELOOM_SYSTEM_DIR}/changelog.gz)
install(FILES ${HOMELOOM_SYSTEM_DIR}/changelog.gz DESTINATION ${HOMELOOM_DOC_DIR})
set_target_properties(homeloom homeloom-platform homeloom-agent homeloom-hub-app PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(homeloom-tv PROPERTIES INSTALL_RPATH "$ORIGIN/../${HOMELOOM_PRIVATE_DIR}")

# cpack -G DEB --config build/release/CPackConfig.cmake
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME homeloom)
set(CPACK_PACKAGE_VENDOR HomeLoom)
set(CPACK_PACKAGE_CONTACT "HomeLoom developers <developers@homeloom.invalid>")
set(CPACK_PACKAGE_DESCRIPTION "The plug-in that shows and controls the home on a TV,
a desk TV to run it on any machine, and simulated homes behind it.")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The screen's icons.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-material-design-icons-iconfont)
# Our own libraries belong to no package that could be named as a dependency.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
# Python's own libraries are needed by its client alone.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "python3 (>= 3.11), nodejs (>= 18)")
include(CPack)
