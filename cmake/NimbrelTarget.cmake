# The house's targets and their direction: a target uses only targets that stand before it here.
set(NIMBREL_ORDER
    nimbrel_crypto nimbrel_config nimbrel_fs nimbrel_fuse nimbrelctl
    nimbrel_platform nimbrel_util nimbrel_discovery nimbrel_volume
    nimbrel_assistant nimbrel_assistants nimbrel_windows nimbrel_app nimbrel)

set(NIMBREL_LAYERS_FILE ${PROJECT_BINARY_DIR}/layers.txt)
file(WRITE ${NIMBREL_LAYERS_FILE} "")

# Stops configuring when `target` would use something that isn't before it.
function(nimbrel_check_direction target)
    list(FIND NIMBREL_ORDER ${target} own)
    if(own LESS 0)
        message(FATAL_ERROR "${target} has no place in NIMBREL_ORDER (cmake/NimbrelTarget.cmake).")
    endif()
    foreach(used IN LISTS ARGN)
        list(FIND NIMBREL_ORDER ${used} other)
        if(other LESS 0 OR NOT other LESS own)
            message(FATAL_ERROR "${target} may not use ${used}: it doesn't stand before it.")
        endif()
    endforeach()
endfunction()

# Writes one line a source for the `layers` test: target, what it uses, file.
function(nimbrel_note_layer target sources uses)
    list(JOIN uses "," used)
    foreach(source IN LISTS sources)
        file(RELATIVE_PATH path ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/${source})
        file(APPEND ${NIMBREL_LAYERS_FILE} "${target};${used};${path}\n")
    endforeach()
endfunction()

# nimbrel_add_library(NAME SOURCES ... [USES targets] [LINKS public] [PRIVATE_LINKS private])
function(nimbrel_add_library target)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES;LINKS;PRIVATE_LINKS" ${ARGN})
    nimbrel_check_direction(${target} ${ARG_USES})
    nimbrel_note_layer(${target} "${ARG_SOURCES}" "${ARG_USES}")
    add_library(${target} STATIC ${ARG_SOURCES})
    nimbrel_compiler(${target})
    target_link_libraries(${target} PUBLIC ${ARG_USES} ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
endfunction()

# The same for a program.
function(nimbrel_add_program target)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES;LINKS" ${ARGN})
    nimbrel_check_direction(${target} ${ARG_USES})
    nimbrel_note_layer(${target} "${ARG_SOURCES}" "${ARG_USES}")
    add_executable(${target} ${ARG_SOURCES})
    nimbrel_compiler(${target})
    target_link_libraries(${target} PRIVATE ${ARG_USES} ${ARG_LINKS})
endfunction()
