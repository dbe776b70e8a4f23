# Reads every source of the rooms below ROOT and fails on an include from a room that is not allowed
# there, naming the file. Usage: cmake -DROOT=folder -P rooms.cmake
cmake_policy(SET CMP0057 NEW)

# A room's files include from the room itself and from these folders and headers. Folders that are
# not named here take the rule of the folder above them.
set(rule_data "data")
set(rule_app/company "app/company;data")
set(rule_framework "framework;app/company;data")
set(rule_framework/core "framework/core;app/company;data")
set(rule_search "search;framework;app/company;data")
set(rule_vatchange/definition "vatchange/definition;framework/core/saved_definition.h")
set(rule_vatchange/rules "vatchange/rules;vatchange/definition")
set(rule_vatchange/orders "vatchange/orders;vatchange/rules;vatchange/definition;data;app/company")
set(rule_vatchange/run "vatchange/run;vatchange/orders;vatchange/rules;vatchange/definition;framework/core;app/company;data")
set(rule_vatchange/form "vatchange;search;framework;app/company;data")
set(rule_app/shell "app;vatchange;search;framework;data")
set(rule_tools "tools;app/company;data")
set(rooms data app/company framework framework/core search vatchange/definition vatchange/rules
    vatchange/orders vatchange/run vatchange/form app/shell tools)

# Rooms without windows: a run is driven and tested without one.
set(windowless data app/company framework/core vatchange/definition vatchange/rules vatchange/orders
    vatchange/run tools)
set(window_headers "^Q(Widget|Dialog|Application|MainWindow|MessageBox|Label|PushButton|Painter)$")

set(faults)
foreach(room ${rooms})
    file(GLOB_RECURSE sources RELATIVE ${ROOT} ${ROOT}/${room}/*.h ${ROOT}/${room}/*.cpp)
    list(SORT sources)
    foreach(source ${sources})
        # the most special rule that fits
        get_filename_component(owner ${source} DIRECTORY)
        while(NOT DEFINED rule_${owner} AND owner MATCHES "/")
            get_filename_component(owner ${owner} DIRECTORY)
        endwhile()
        if(NOT owner STREQUAL room)
            continue()
        endif()
        file(STRINGS ${ROOT}/${source} includes REGEX "^#include")
        foreach(include IN LISTS includes)
            if(include MATCHES "\"(.+/.+)\"")  # what the build makes has no folder in its name
                set(header ${CMAKE_MATCH_1})
                set(allowed FALSE)
                foreach(from ${rule_${room}})
                    if(header STREQUAL from OR header MATCHES "^${from}/")
                        set(allowed TRUE)
                    endif()
                endforeach()
                if(NOT allowed)
                    list(APPEND faults "${source}: room ${room} may not include ${header}")
                endif()
            elseif(include MATCHES "<(.+)>" AND room IN_LIST windowless)
                set(header ${CMAKE_MATCH_1})
                if(header MATCHES ${window_headers})
                    list(APPEND faults "${source}: room ${room} has no windows, so no ${header}")
                endif()
            endif()
        endforeach()
    endforeach()
endforeach()

foreach(fault IN LISTS faults)
    message("${fault}")
endforeach()
list(LENGTH faults count)
if(count GREATER 0)
    message(FATAL_ERROR "${count} includes against the rooms' rule")
endif()
