# zevx_add_test(<name> SOURCES <files...> DEPENDS <targets...> [NEEDS_GUI] [TIMEOUT <s>])
# One QtTest executable registered with CTest: offscreen platform, a timeout and a label
# named after the folder under tests/.
function(zevx_add_test name)
  cmake_parse_arguments(ARG "NEEDS_GUI" "TIMEOUT" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE Qt6::Test ${ARG_DEPENDS})
  if(TARGET zevx_testsupport AND NOT name STREQUAL "zevx_testsupport")
    target_link_libraries(${name} PRIVATE zevx_testsupport)
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  add_test(NAME ${name} COMMAND ${name})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  get_filename_component(label ${CMAKE_CURRENT_SOURCE_DIR} NAME)
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${ARG_TIMEOUT}
    LABELS ${label}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ZEVX_LOG=0;QT_LOGGING_RULES=qt.qpa.*=false")
endfunction()

# zevx_add_library(<name> <sources...>): a static library of one folder, usable as
# #include "<folder>/<Header>.h" from anywhere in the tree.
function(zevx_add_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()
