find_package(GTest REQUIRED)

# velmora_gtest(<name> SOURCES <files...> [LIBS <libs...>] [TIMEOUT <seconds>])
# A GoogleTest executable registered with CTest. Tests see the build's bin/ folder
# (where the tools live) through VELMORA_BIN_DIR and run on the offscreen platform.
function(velmora_gtest name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE GTest::gtest GTest::gtest_main ${ARG_LIBS})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  add_test(NAME ${name} COMMAND ${name})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 600)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
    ENVIRONMENT "VELMORA_BIN_DIR=${CMAKE_BINARY_DIR}/bin;VELMORA_SOURCE_DIR=${CMAKE_SOURCE_DIR};QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=0")
endfunction()

# velmora_qtest(<name> SOURCES <files...> [LIBS <libs...>])
# A Qt Test executable for widgets, run offscreen; screenshots go to build/screenshots.
function(velmora_qtest name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE Qt6::Test ${ARG_LIBS})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600
    ENVIRONMENT "VELMORA_BIN_DIR=${CMAKE_BINARY_DIR}/bin;VELMORA_SOURCE_DIR=${CMAKE_SOURCE_DIR};VELMORA_SCREENSHOT_DIR=${CMAKE_BINARY_DIR}/screenshots;QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=0")
endfunction()
