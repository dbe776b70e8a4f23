# taksavaihe_windows_program(TARGET DESCRIPTION [ICON file]): adds version information, manifest and icon
# to a Windows program. Does nothing on other platforms.
function(taksavaihe_windows_program TARGET DESCRIPTION)
    if(NOT WIN32)
        return()
    endif()
    cmake_parse_arguments(PROGRAM "" "ICON" "" ${ARGN})
    set(folder ${CMAKE_BINARY_DIR}/resources)
    set(MANIFEST ${folder}/${TARGET}.manifest)
    set(ICON_LINE)
    if(PROGRAM_ICON)
        set(ICON_LINE "IDI_ICON1 ICON \"${PROGRAM_ICON}\"")  # the name that Qt looks for
    endif()
    configure_file(${CMAKE_SOURCE_DIR}/packaging/windows/program.manifest.in ${MANIFEST} @ONLY)
    configure_file(${CMAKE_SOURCE_DIR}/packaging/windows/program.rc.in ${folder}/${TARGET}.rc @ONLY)
    set_source_files_properties(${folder}/${TARGET}.rc PROPERTIES
        OBJECT_DEPENDS "${MANIFEST};${PROGRAM_ICON}")
    target_sources(${TARGET} PRIVATE ${folder}/${TARGET}.rc)
endfunction()
