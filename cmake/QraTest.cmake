# qra_add_test(NAME SOURCES file... [LINK library...] [LABELS label...] [TIMEOUT seconds] [LAUNCHER command...])
#
# Adds the GoogleTest program NAME. Each of its cases is a test of its own in a process of its own, named
# NAME.Suite.Case, so that no case sees another one's singletons. LAUNCHER runs the program through a command,
# such as ${QRA_WITH_BUS}: a private message bus in place of the system bus, with the engine of this build on it;
# ${QRA_WITH_EMPTY_BUS} gives such a bus without an engine.
function(qra_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "SOURCES;LINK;LABELS;LAUNCHER")
    add_executable(${name} ${arg_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${arg_LINK} GTest::gmock GTest::gtest GTest::gtest_main)
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 60)
    endif()
    if(arg_LAUNCHER)
        set_property(TARGET ${name} PROPERTY CROSSCOMPILING_EMULATOR ${arg_LAUNCHER})
        if("${arg_LAUNCHER}" STREQUAL "${QRA_WITH_BUS}")
            add_dependencies(${name} qra-content-engine)
        endif()
    endif()
    gtest_discover_tests(${name}
        TEST_PREFIX ${name}.
        DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}")
endfunction()

# An engine that the bus starts keeps off the user's own media database.
set(QRA_WITH_BUS ${CMAKE_COMMAND} -E env QRA_ENGINE=${PROJECT_BINARY_DIR}/engine/qra-content-engine
    QRA_DATA_DIR=${PROJECT_BINARY_DIR}/tests/engine-data ${PROJECT_SOURCE_DIR}/scripts/with-bus)
set(QRA_WITH_EMPTY_BUS ${CMAKE_COMMAND} -E env QRA_ENGINE= QRA_DATA_DIR=${PROJECT_BINARY_DIR}/tests/engine-data
    ${PROJECT_SOURCE_DIR}/scripts/with-bus)

if(QRA_BUILD_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()
