# What every target of ours has in common. Nothing here reaches a host that links the kit, except the include paths.

add_library(kestrom_options INTERFACE)
target_compile_features(kestrom_options INTERFACE cxx_std_23)
target_compile_options(kestrom_options INTERFACE
  $<BUILD_INTERFACE:-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual>
  # g++ 12 warns of overlapping copies inside std::string that cannot happen (its bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${KESTROM_WARNINGS_AS_ERRORS}>:-Werror>
  # So that the linker can leave out of the shared library what nobody calls.
  $<BUILD_INTERFACE:-ffunction-sections -fdata-sections>)
if(KESTROM_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Under the sanitizers it takes the empty state of std::optional for an uninitialised value.
  target_compile_options(kestrom_options INTERFACE -Wno-maybe-uninitialized)
endif()
if(KESTROM_SANITIZE)
  target_compile_options(kestrom_options INTERFACE -fsanitize=${KESTROM_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(kestrom_options INTERFACE -fsanitize=${KESTROM_SANITIZE})
endif()

if(KESTROM_BUILD_FUZZERS)
  target_compile_options(kestrom_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# kestrom_layer(NAME DEPENDS target…): one layer of the tree, the folder that calls it. It links only the layers below it,
# so that an include that points up the tree does not link.
function(kestrom_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS;PRIVATE_DEPENDS")
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
  # Inside the shared library only what the public headers mark stays visible.
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_link_libraries(${name} PUBLIC ${arg_DEPENDS} PRIVATE ${arg_PRIVATE_DEPENDS} $<BUILD_INTERFACE:kestrom_options>)
  target_compile_features(${name} PUBLIC cxx_std_23)
endfunction()
