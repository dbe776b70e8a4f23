include(GoogleTest)

# Builds everything that the tests labelled "unit" and "servers" need: the sanitizer build of every
# change.
add_custom_target(unit_tests)

# taksavaihe_test(NAME FROM dir... USES library... [LABEL unit|whole|servers] [LOCK name] [AUTOMOC]):
# adds a test program. Its tests run without a display and with their own settings, so plain `ctest`
# works anywhere.
#   LABEL    unit (default); whole: whole runs, killed or with faults; servers: needs SQL servers
#   LOCK     its tests share a resource (a file next to the program, a server) and run one at a time
#   AUTOMOC  its sources declare Qt objects
function(taksavaihe_test name)
    cmake_parse_arguments(TEST "AUTOMOC" "LABEL;LOCK" "FROM;USES" ${ARGN})
    set(sources)
    foreach(dir ${TEST_FROM})
        file(GLOB found CONFIGURE_DEPENDS ${dir}/*.cpp ${dir}/*.h)
        list(APPEND sources ${found})
    endforeach()
    if(NOT sources)
        return()
    endif()
    if(NOT TEST_LABEL)
        set(TEST_LABEL unit)
    endif()
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE taksavaihe_test_flags ${TEST_USES} test_support GTest::gtest)
    taksavaihe_pch(${name} tests)
    set_target_properties(${name} PROPERTIES AUTOMOC ${TEST_AUTOMOC})
    if(NOT TEST_LABEL STREQUAL "whole")
        add_dependencies(unit_tests ${name})
    endif()
    set(lock)
    if(TEST_LOCK)
        set(lock RESOURCE_LOCK ${TEST_LOCK})
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT 300 LABELS ${TEST_LABEL}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen" ${lock})
endfunction()
