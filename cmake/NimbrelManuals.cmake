# The manuals as PDF, where the program looks for them: share/nimbrel/LANGUAGE/NAME.pdf.
option(NIMBREL_MANUALS "Make the manuals" ON)

set(NIMBREL_MANUAL_FOLDER ${PROJECT_BINARY_DIR}/share/nimbrel)
set(NIMBREL_MANUAL_LANGUAGES en de)

# Stops configuring when the tool's own parts are missing.
function(nimbrel_check_manual_tool tool)
    execute_process(COMMAND ${tool} --version RESULT_VARIABLE result
                    OUTPUT_QUIET ERROR_VARIABLE complaint)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "The manuals can't be made: ${complaint}\n"
                "Install the packages python3-markdown and weasyprint, or configure with "
                "-DNIMBREL_MANUALS=OFF.")
    endif()
endfunction()

# nimbrel_add_manual(SOURCE NAME): docs/manual/LANGUAGE/SOURCE.md becomes LANGUAGE/NAME.pdf in each
# language. The tool tells which pictures it has read.
function(nimbrel_add_manual source name)
    set(tool ${PROJECT_SOURCE_DIR}/tools/make_pdf)
    set(style ${PROJECT_SOURCE_DIR}/docs/manual/manual.css)
    foreach(language IN LISTS NIMBREL_MANUAL_LANGUAGES)
        set(text ${PROJECT_SOURCE_DIR}/docs/manual/${language}/${source}.md)
        set(pdf ${NIMBREL_MANUAL_FOLDER}/${language}/${name}.pdf)
        set(read ${PROJECT_BINARY_DIR}/manuals/${language}-${source}.d)
        add_custom_command(OUTPUT ${pdf}
            COMMAND ${tool} ${text} ${style} ${language} ${pdf} ${read}
            DEPENDS ${tool} ${style} ${text}
            DEPFILE ${read}
            COMMENT "Making ${language}/${name}.pdf"
            VERBATIM)
        set_property(GLOBAL APPEND PROPERTY NIMBREL_MANUAL_FILES ${pdf})
        install(FILES ${pdf} DESTINATION ${CMAKE_INSTALL_DATADIR}/nimbrel/${language})
    endforeach()
endfunction()

if(NIMBREL_MANUALS)
    nimbrel_check_manual_tool(${PROJECT_SOURCE_DIR}/tools/make_pdf)
    nimbrel_add_manual(manual "Nimbrel for Mac Manual")
    nimbrel_add_manual(getting-started "Getting Started")
    get_property(files GLOBAL PROPERTY NIMBREL_MANUAL_FILES)
    add_custom_target(nimbrel_manuals ALL DEPENDS ${files})
endif()
