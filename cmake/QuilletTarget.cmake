# What every target of the project shares: warnings, assertions, paths and instrumentation.

# Misuse is stopped by assertions in every build type: whatever a toolchain file or a build type
# brings along, they stay on.
foreach(build_type RELEASE RELWITHDEBINFO MINSIZEREL)
    string(REGEX REPLACE "[-/]DNDEBUG *" "" CMAKE_CXX_FLAGS_${build_type} "${CMAKE_CXX_FLAGS_${build_type}}")
endforeach()

# Interface target that carries the project's compile and link options.
add_library(quillet_options INTERFACE)
target_compile_options(quillet_options INTERFACE
    -UNDEBUG
    # Assertions name a source by its path in the project, wherever the project was built.
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    -Wold-style-cast -Wcast-qual -Wextra-semi -Wnull-dereference -Wformat=2 -Wundef
    $<$<BOOL:${QUILLET_WERROR}>:-Werror>)
# char* to QString only through a named conversion, old-style connects allowed, no foreach macro.
target_compile_definitions(quillet_options INTERFACE QT_NO_FOREACH QT_DEPRECATED_WARNINGS)

# What people install is hardened as the programs of the distribution are.
set(is_release $<CONFIG:Release>)
target_compile_options(quillet_options INTERFACE
    $<${is_release}:-D_FORTIFY_SOURCE=2 -fstack-protector-strong -Werror=format-security>)
target_link_options(quillet_options INTERFACE $<${is_release}:LINKER:-z,relro,-z,now>)

if(QUILLET_SANITIZE)
    target_compile_options(quillet_options INTERFACE
        -fsanitize=${QUILLET_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(quillet_options INTERFACE -fsanitize=${QUILLET_SANITIZE})
endif()
if(QUILLET_COVERAGE)
    target_compile_options(quillet_options INTERFACE --coverage -O0)
    target_link_options(quillet_options INTERFACE --coverage)
endif()

# quillet_library(NAME SOURCES ... LINK ...): one layer of the program.
function(quillet_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_library(${name} STATIC ${arg_SOURCES})
    # Sources include each other by their path from the project's root; the layer's own folder is
    # there for a user that wants the short name.
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE $<BUILD_INTERFACE:quillet_options>)
endfunction()
