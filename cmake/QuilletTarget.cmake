# Options shared by all targets: warnings, assertions, paths and instrumentation.

# No build may define NDEBUG, which removes assertions. They stop the program when a project file is
# damaged; without them, it would show a document with wrong labels, and a save would overwrite the file
# with them. CMake defines NDEBUG in release builds, so take it out of their flags.
foreach(build_type RELEASE RELWITHDEBINFO MINSIZEREL)
    string(REGEX REPLACE "[-/]DNDEBUG *" "" CMAKE_CXX_FLAGS_${build_type} "${CMAKE_CXX_FLAGS_${build_type}}")
endforeach()

# Interface target that carries the project's compile and link options.
add_library(quillet_options INTERFACE)
target_compile_options(quillet_options INTERFACE
    -UNDEBUG
    # Assertions print a source's path relative to the project.
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    -Wold-style-cast -Wcast-qual -Wextra-semi -Wnull-dereference -Wformat=2 -Wundef
    $<$<BOOL:${QUILLET_WERROR}>:-Werror>)
target_compile_definitions(quillet_options INTERFACE QT_NO_FOREACH QT_DEPRECATED_WARNINGS)
if(QUILLET_QT EQUAL 6)
    # Qt 6 counts with 64 bits, while the code counts with int, like Qt 5. Iterators of an empty QSet are
    # null pointers to GCC, even where the code has checked that it is not empty.
    target_compile_options(quillet_options INTERFACE -Wno-conversion -Wno-null-dereference)
endif()
if(CMAKE_UNITY_BUILD)
    # GCC takes the included sources for headers, whose anonymous types would differ between sources.
    target_compile_options(quillet_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()

# Release builds are hardened like Debian's packages.
set(is_release $<CONFIG:Release>)
target_compile_options(quillet_options INTERFACE
    $<${is_release}:-D_FORTIFY_SOURCE=2 -fstack-protector-strong -Werror=format-security>)
target_link_options(quillet_options INTERFACE $<${is_release}:LINKER:-z,relro,-z,now>)

# With the sources of a room in one object, only the linker can leave out what a program does not use.
set(is_optimized $<CONFIG:Release,None>)
target_compile_options(quillet_options INTERFACE
    $<${is_optimized}:-ffunction-sections -fdata-sections>)
target_link_options(quillet_options INTERFACE $<${is_optimized}:LINKER:--gc-sections>)

# An optimizing GCC warns about a null pointer in Qt 5's copy constructor of QVector: Qt does not declare
# that qBadAlloc() never returns. The other builds have the warning.
target_compile_options(quillet_options INTERFACE $<${is_optimized}:-Wno-null-dereference>)

if(QUILLET_SANITIZE)
    target_compile_options(quillet_options INTERFACE
        -fsanitize=${QUILLET_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(quillet_options INTERFACE -fsanitize=${QUILLET_SANITIZE})
endif()
if(QUILLET_COVERAGE)
    target_compile_options(quillet_options INTERFACE --coverage -O0)
    target_link_options(quillet_options INTERFACE --coverage)
endif()

# quillet_library(NAME SOURCES ... LINK ...): adds the library of one room.
function(quillet_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_library(${name} STATIC ${arg_SOURCES})
    # Sources include each other by their path from the project's root. The room's own folder lets
    # users include headers by their short names.
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE $<BUILD_INTERFACE:quillet_options>)
endfunction()
