# qra_add_test(NAME SOURCES file... [LINK library...] [LABELS label...] [TIMEOUT seconds]
#              [RESOURCE_LOCK name] [LAUNCHER command...])
#
# Adds the GoogleTest program NAME. Each of its cases is a test of its own in a process of its own, named
# NAME.Suite.Case, so that no case sees another one's singletons. LAUNCHER runs the program through a command,
# such as ${QRA_WITH_BUS}: a private message bus in place of the system bus, with the engine of this build on it;
# ${QRA_WITH_EMPTY_BUS} gives such a bus without an engine. Tests with the same RESOURCE_LOCK do not run at once.
function(qra_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT;RESOURCE_LOCK" "SOURCES;LINK;LABELS;LAUNCHER")
    add_executable(${name} ${arg_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${arg_LINK} GTest::gmock GTest::gtest GTest::gtest_main)
    if(TARGET test-headers)
        target_precompile_headers(${name} REUSE_FROM test-headers)
        target_compile_options(${name} PRIVATE -pthread $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    if(arg_LAUNCHER)
        set_property(TARGET ${name} PROPERTY CROSSCOMPILING_EMULATOR ${arg_LAUNCHER})
        if("${arg_LAUNCHER}" STREQUAL "${QRA_WITH_BUS}")
            add_dependencies(${name} qra-content-engine)
        endif()
    endif()
    set(properties TIMEOUT ${arg_TIMEOUT})
    foreach(property LABELS RESOURCE_LOCK)
        if(arg_${property})
            list(APPEND properties ${property} ${arg_${property}})
        endif()
    endforeach()
    gtest_discover_tests(${name}
        TEST_PREFIX ${name}.
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 120
        PROPERTIES ${properties})
endfunction()

# An engine that the bus starts has a media database of its own, which goes with the bus.
set(QRA_WITH_BUS ${CMAKE_COMMAND} -E env QRA_ENGINE=${PROJECT_BINARY_DIR}/engine/qra-content-engine QRA_DATA_DIR=
    ${PROJECT_SOURCE_DIR}/scripts/with-bus)
set(QRA_WITH_EMPTY_BUS ${CMAKE_COMMAND} -E env QRA_ENGINE= QRA_DATA_DIR= ${PROJECT_SOURCE_DIR}/scripts/with-bus)

if(QRA_BUILD_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()
