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

# velmora_qtest_at_scale2(<name>)
# Runs the Qt Test <name> once more at device pixel ratio 2 (as on a 200 % display), as
# <name>_scale2, with its screenshots in build/screenshots/scale2.
function(velmora_qtest_at_scale2 name)
  add_test(NAME ${name}_scale2 COMMAND ${name})
  set_tests_properties(${name}_scale2 PROPERTIES TIMEOUT 600
    ENVIRONMENT "VELMORA_BIN_DIR=${CMAKE_BINARY_DIR}/bin;VELMORA_SOURCE_DIR=${CMAKE_SOURCE_DIR};VELMORA_SCREENSHOT_DIR=${CMAKE_BINARY_DIR}/screenshots/scale2;QT_QPA_PLATFORM=offscreen;QT_SCALE_FACTOR=2;ASAN_OPTIONS=detect_leaks=0")
endfunction()
