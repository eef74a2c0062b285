# One static library a folder, one test executable a folder of tests/. The link lists are the picture of the system: what
# a folder may include is what it links. All of src/ is on the include path, so it is scripts/layers that holds the
# includes against the lists.

include(CheckCXXCompilerFlag)
find_program(CCACHE ccache)
if(CCACHE)
  # Precompiled headers defeat the cache unless it is told that their macros and times do not matter.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE})
endif()

add_library(orvelle_options INTERFACE)
target_compile_options(orvelle_options INTERFACE -Wall -Wextra -Wconversion -Wshadow -Wnon-virtual-dtor
                                                 -Wold-style-cast -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 takes the alternatives that a std::variant does not hold for uninitialised ones.
  target_compile_options(orvelle_options INTERFACE -Wno-maybe-uninitialized)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
  target_compile_options(orvelle_options INTERFACE -fpch-preprocess)
endif()
target_compile_definitions(orvelle_options INTERFACE QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS
                                                     QT_NO_URL_CAST_FROM_STRING)
target_include_directories(orvelle_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(ORVELLE_SANITIZE)
  target_compile_options(orvelle_options INTERFACE -fsanitize=${ORVELLE_SANITIZE} -fno-omit-frame-pointer
                                                   -fno-sanitize-recover=all)
  target_link_options(orvelle_options INTERFACE -fsanitize=${ORVELLE_SANITIZE})
endif()

# Every target takes the one precompiled header, so that it is built once.
file(WRITE ${CMAKE_BINARY_DIR}/pch.cpp "")
add_library(orvelle_pch OBJECT ${CMAKE_BINARY_DIR}/pch.cpp)
target_link_libraries(orvelle_pch PRIVATE orvelle_options Qt6::Core)
target_precompile_headers(orvelle_pch PRIVATE ${CMAKE_SOURCE_DIR}/cmake/pch.h)

# folder_library(NAME [MOC] LINKS targets...): the folder's *.cpp as the static library NAME. Its folder's headers are
# included by their path below src/. MOC for folders whose classes have properties, invokable functions or signals.
function(folder_library name)
  cmake_parse_arguments(ARG "MOC" "" "LINKS;SOURCES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  file(GLOB headers CONFIGURE_DEPENDS *.h)
  if(NOT sources AND NOT ARG_SOURCES)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE Qt6::Core ${ARG_LINKS})
    return()
  endif()
  add_library(${name} STATIC ${sources} ${headers} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE orvelle_options PUBLIC Qt6::Core ${ARG_LINKS})
  target_precompile_headers(${name} REUSE_FROM orvelle_pch)
  if(ARG_MOC)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
  endif()
endfunction()

# folder_program(NAME LINKS targets...): the folder's *.cpp as the executable NAME.
function(folder_program name)
  cmake_parse_arguments(ARG "MOC" "" "LINKS;SOURCES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE orvelle_options Qt6::Core ${ARG_LINKS})
  target_precompile_headers(${name} REUSE_FROM orvelle_pch)
  if(ARG_MOC)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
  endif()
endfunction()

# folder_test(NAME [MOC] LINKS targets...): the folder's *.cpp as one test executable, its cases known to CTest.
function(folder_test name)
  cmake_parse_arguments(ARG "MOC" "" "LINKS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE orvelle_options tests_main ${ARG_LINKS})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_precompile_headers(${name} REUSE_FROM orvelle_pch)
  if(ARG_MOC)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
  endif()
  include(GoogleTest)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES PROPERTIES TIMEOUT 300)
endfunction()
