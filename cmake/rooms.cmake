# One folder of src/ is one room: a static library that links only the rooms it may see, so that a call upwards does
# not link. tests/include_arrows reads the #include lines for the same rule.

add_library(deckhand_options INTERFACE)
target_compile_options(deckhand_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion)
if(NOT DECKHAND_UNITY)
  # Where files are compiled as one, a local of one seems to shadow what another one has.
  target_compile_options(deckhand_options INTERFACE -Wshadow)
endif()
if(DECKHAND_WERROR)
  target_compile_options(deckhand_options INTERFACE -Werror)
endif()
if(DECKHAND_SANITIZE)
  target_compile_options(deckhand_options INTERFACE -fsanitize=${DECKHAND_SANITIZE} -fno-omit-frame-pointer
                                                   -fno-sanitize-recover=all)
  target_link_options(deckhand_options INTERFACE -fsanitize=${DECKHAND_SANITIZE})
endif()

# deckhand_unity(TARGET file...): with DECKHAND_UNITY, compiles the target's files a dozen at a time. The files named are
# compiled alone: their unnamed namespaces have names in common with others of the target. ALL names every one.
function(deckhand_unity target)
  if(DECKHAND_UNITY AND NOT "ALL" IN_LIST ARGN)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# deckhand_room(NAME SEES room... [LIBRARIES target...] [ALONE file...]): the room in this folder; ALONE as above.
function(deckhand_room name)
  cmake_parse_arguments(ROOM "" "" "SEES;LIBRARIES;ALONE" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  set(kind PUBLIC)
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PRIVATE deckhand_options)
    deckhand_unity(${name} ${ROOM_ALONE})
  else()
    set(kind INTERFACE)
    add_library(${name} INTERFACE)
  endif()
  target_include_directories(${name} ${kind} ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} ${kind} ${ROOM_SEES} ${ROOM_LIBRARIES})
endfunction()

# deckhand_tests(NAME ROOMS target... [ALONE file...]): the tests in this folder, each test case a ctest test; ALONE as
# above.
function(deckhand_tests name)
  cmake_parse_arguments(TESTS "" "" "ROOMS;ALONE" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *_test.cpp)
  add_executable(${name} ${sources})
  deckhand_unity(${name} ${TESTS_ALONE})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE deckhand_options ${TESTS_ROOMS} GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE DECKHAND_FIXTURES="${PROJECT_SOURCE_DIR}/tests/fixtures")
  set(environment "")
  if(DECKHAND_SANITIZE MATCHES thread)
    set(environment ENVIRONMENT TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/tsan.supp)
  elseif(DECKHAND_SANITIZE MATCHES address)
    set(environment ENVIRONMENT LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0)
  endif()
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300 ${environment})
endfunction()
