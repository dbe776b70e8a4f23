include(GoogleTest)
# taksavaihe_test(NAME FROM dir... USES library...): one test program a room. Every test runs without
# a display and with settings of its own, so plain `ctest` works anywhere. ONE_BY_ONE: its tests share
# a file beside the program.
function(taksavaihe_test name)
    cmake_parse_arguments(TEST "ONE_BY_ONE" "" "FROM;USES" ${ARGN})
    set(sources)
    foreach(dir ${TEST_FROM})
        file(GLOB found CONFIGURE_DEPENDS ${dir}/*.cpp ${dir}/*.h)
        list(APPEND sources ${found})
    endforeach()
    if(NOT sources)
        return()
    endif()
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE taksavaihe_flags ${TEST_USES} test_support GTest::gtest)
    taksavaihe_pch(${name} tests)
    set(lock)
    if(TEST_ONE_BY_ONE)
        set(lock RESOURCE_LOCK ${name})
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT 300
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen" ${lock})
endfunction()
