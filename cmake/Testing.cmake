# zarvik_add_test(NAME SOURCES source... LIBRARIES library... [TIMEOUT seconds] [SHARDS count] [DISPLAY])
#
# A GoogleTest program, run by ctest as so many tests that share its cases, with DISPLAY each on a display of its own.
# Without a main() of its own it gets GoogleTest's. Under a sanitizer it gets that one's options from tests/sanitizers,
# so it behaves the same when started by hand.

find_package(GTest REQUIRED)

function(zarvik_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "DISPLAY" "TIMEOUT;SHARDS" "SOURCES;LIBRARIES")
    if(NOT test_TIMEOUT)
        set(test_TIMEOUT 300)
    endif()
    add_executable(${name} ${test_SOURCES} ${PROJECT_SOURCE_DIR}/tests/sanitizers/options.cpp)
    target_link_libraries(${name} PRIVATE project_options ${test_LIBRARIES} GTest::gtest GTest::gtest_main)
    set(launcher)
    if(test_DISPLAY)
        set(launcher ${PROJECT_SOURCE_DIR}/scripts/with-display.sh)
    endif()
    if(NOT test_SHARDS)
        add_test(NAME ${name} COMMAND ${launcher} $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES TIMEOUT ${test_TIMEOUT})
        return()
    endif()
    foreach(shard RANGE 1 ${test_SHARDS})
        math(EXPR index "${shard} - 1")
        add_test(NAME ${name}-${shard} COMMAND ${launcher} $<TARGET_FILE:${name}>)
        set_tests_properties(${name}-${shard} PROPERTIES TIMEOUT ${test_TIMEOUT}
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${test_SHARDS};GTEST_SHARD_INDEX=${index}")
    endforeach()
endfunction()
