# taksavaihe_dictionary_resources(TARGET): compiles every table source and adds blocks and sources to
# TARGET as resources:
#   :/data/dictionary/NAME   compiled block of a table that has a compiled dictionary
#   :/data/source/NAME.dict  source of every table that a new company has
# NAME is the table's name in upper case.
set(TAKSAVAIHE_DICTIONARY_DIR ${CMAKE_CURRENT_LIST_DIR})

function(taksavaihe_dictionary_resources target)
    set(out ${CMAKE_CURRENT_BINARY_DIR}/dictionary)
    file(GLOB tables CONFIGURE_DEPENDS ${TAKSAVAIHE_DICTIONARY_DIR}/tables/*.dict)
    file(GLOB catalogue CONFIGURE_DEPENDS ${TAKSAVAIHE_DICTIONARY_DIR}/catalogue/*.dict)

    set(blocks)
    set(blockLines "")
    foreach(source ${tables})
        get_filename_component(name ${source} NAME_WLE)
        string(TOUPPER "${name}" upper)
        # '$' in catalogue names has a meaning in make and shells.
        string(REPLACE "$" "_" plain "${name}")
        set(block ${out}/${plain}.bin)
        add_custom_command(OUTPUT ${block}
            COMMAND dictc ${block} ${source}
            DEPENDS dictc ${source}
            COMMENT "Compiling dictionary ${upper}"
            VERBATIM)
        list(APPEND blocks ${block})
        string(APPEND blockLines "    <file alias=\"${upper}\">${block}</file>\n")
    endforeach()

    set(sourceLines "")
    foreach(source ${tables} ${catalogue})
        get_filename_component(name ${source} NAME_WLE)
        string(TOUPPER "${name}" upper)
        string(APPEND sourceLines "    <file alias=\"${upper}.dict\">${source}</file>\n")
    endforeach()

    file(CONFIGURE OUTPUT ${out}/dictionary.qrc @ONLY CONTENT
"<RCC>
  <qresource prefix=\"/data/dictionary\">
@blockLines@  </qresource>
  <qresource prefix=\"/data/source\">
@sourceLines@  </qresource>
</RCC>
")
    add_custom_command(OUTPUT ${out}/qrc_dictionary.cpp
        COMMAND Qt6::rcc --name dictionary --no-compress
                --output ${out}/qrc_dictionary.cpp ${out}/dictionary.qrc
        DEPENDS ${out}/dictionary.qrc ${blocks} ${tables} ${catalogue}
        VERBATIM)
    set_source_files_properties(${out}/qrc_dictionary.cpp PROPERTIES SKIP_AUTOMOC ON)
    target_sources(${target} PRIVATE ${out}/qrc_dictionary.cpp)
endfunction()
