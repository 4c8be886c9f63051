# Warnings live in one INTERFACE target; instrumentation is applied per preset.
add_library(nimbrel_warnings INTERFACE)
target_compile_options(nimbrel_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Wold-style-cast -Wcast-align -Woverloaded-virtual -Wnull-dereference -Wformat=2
    $<$<BOOL:${NIMBREL_WERROR}>:-Werror>
    # g++ 12 reports false positives of these through inlined library code.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-null-dereference -Wno-restrict>)

add_library(nimbrel_instrumentation INTERFACE)
if(NIMBREL_SANITIZE)
    set(flags -fsanitize=${NIMBREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(nimbrel_instrumentation INTERFACE ${flags})
    target_link_options(nimbrel_instrumentation INTERFACE ${flags})
endif()
if(NIMBREL_COVERAGE)
    target_compile_options(nimbrel_instrumentation INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(nimbrel_instrumentation INTERFACE --coverage)
endif()

# Gives a target the project's language level, warnings and instrumentation.
function(nimbrel_compiler target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} PRIVATE nimbrel_warnings PUBLIC nimbrel_instrumentation)
endfunction()
