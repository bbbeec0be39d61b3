# What every target of this project is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Both optimised builds alike; line numbers for stacks, and no more debug information than that: it takes a quarter of the
# time of a build. Who steps through the code builds with CMAKE_BUILD_TYPE=Debug.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
# It is the tested code that has to be fast, not the tests.
set(OSTREL_TEST_OPTIONS $<$<NOT:$<CONFIG:Debug>>:-O1>)

add_library(ostrel_compile INTERFACE)
target_include_directories(ostrel_compile INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src)
target_compile_options(ostrel_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # What GCC 12 supposes of the bounds of std::string once all is inlined is often wrong; the sanitizers look for themselves.
  target_compile_options(ostrel_compile INTERFACE -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
else()
  # Clang takes changes of sign for conversions.
  target_compile_options(ostrel_compile INTERFACE -Wno-sign-conversion)
endif()
if(WIN32)
  target_compile_definitions(ostrel_compile INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT _WIN32_WINNT=0x0601)
else()
  # A library with unique symbols is never unloaded; the module must be.
  target_compile_options(ostrel_compile INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
endif()

option(OSTREL_SANITIZE "Address and undefined-behaviour sanitizers" OFF)
if(OSTREL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=address,undefined)
endif()

# What makes a fault harder to use (docs/security.md); tests/tools/check_hardening looks whether it is in what was built.
# The sanitizers find more by themselves, and bring checks of their own that these would get in the way of.
if(NOT OSTREL_SANITIZE AND NOT OSTREL_FUZZ)
  target_compile_options(ostrel_compile INTERFACE -fstack-protector-strong
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>
    # GCC 12 takes moving a short wide string for a copy out of bounds. The check itself, at run time, is not concerned.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-attribute-warning>)
  add_link_options(-fstack-protector-strong)
  if(WIN32)
    add_link_options(-Wl,--dynamicbase,--nxcompat,--high-entropy-va)
  else()
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
  endif()
endif()
