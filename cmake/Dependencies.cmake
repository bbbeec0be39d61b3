# Libraries from Debian under one name each. Header-only packages reach the Windows build through a staged folder of
# links: /usr/include itself holds headers of the build machine that must not leak into a cross build.
set(OSTREL_STAGED_HEADERS ${PROJECT_BINARY_DIR}/staged-include)

function(ostrel_header_library name)
  cmake_parse_arguments(ARG "" "" "PATHS;DEFINITIONS;LINKS" ${ARGN})
  foreach(path IN LISTS ARG_PATHS)
    if(NOT EXISTS /usr/include/${path})
      message(FATAL_ERROR "/usr/include/${path} is missing: run ./test or ./run, which install what the build needs")
    endif()
    file(MAKE_DIRECTORY ${OSTREL_STAGED_HEADERS}/${name})
    file(CREATE_LINK /usr/include/${path} ${OSTREL_STAGED_HEADERS}/${name}/${path} SYMBOLIC)
  endforeach()
  add_library(${name} INTERFACE)
  target_include_directories(${name} SYSTEM INTERFACE ${OSTREL_STAGED_HEADERS}/${name})
  target_compile_definitions(${name} INTERFACE ${ARG_DEFINITIONS})
  target_link_libraries(${name} INTERFACE ${ARG_LINKS})
endfunction()

find_package(Threads REQUIRED)
set(socket_libraries "")
if(WIN32)
  set(socket_libraries ws2_32 mswsock)
endif()

ostrel_header_library(dep_fmt PATHS fmt DEFINITIONS FMT_HEADER_ONLY)
# asio decides by what was included before it whether it allocates by std::aligned_alloc or by new: files that differ in
# that would free what the others have allocated in the wrong way.
ostrel_header_library(dep_asio PATHS asio asio.hpp DEFINITIONS ASIO_STANDALONE ASIO_DISABLE_STD_ALIGNED_ALLOC
  LINKS Threads::Threads ${socket_libraries})
ostrel_header_library(dep_cli11 PATHS CLI)
ostrel_header_library(dep_json PATHS nlohmann)

# Xerces-C: Debian's library natively; for Windows the static library that tools/build-xerces-windows makes once.
add_library(dep_xerces INTERFACE)
if(WIN32)
  set(OSTREL_XERCES_ROOT "" CACHE PATH "Where the Xerces-C cross-built for Windows is installed")
  if(NOT EXISTS ${OSTREL_XERCES_ROOT}/lib/libxerces-c.a)
    message(FATAL_ERROR "No Xerces-C for Windows in '${OSTREL_XERCES_ROOT}': tools/build-xerces-windows makes it")
  endif()
  target_include_directories(dep_xerces SYSTEM INTERFACE ${OSTREL_XERCES_ROOT}/include)
  target_compile_definitions(dep_xerces INTERFACE XERCES_STATIC_LIBRARY)
  target_link_libraries(dep_xerces INTERFACE ${OSTREL_XERCES_ROOT}/lib/libxerces-c.a advapi32)
else()
  find_package(XercesC REQUIRED)
  target_link_libraries(dep_xerces INTERFACE XercesC::XercesC)
endif()

# libedit edits the lines of ostrel-bench shell; the console of Windows has an editor of its own.
if(NOT WIN32)
  find_library(OSTREL_LIBEDIT edit)
  if(NOT OSTREL_LIBEDIT OR NOT EXISTS /usr/include/histedit.h)
    message(FATAL_ERROR "libedit is missing: run ./test or ./run, which install what the build needs")
  endif()
  add_library(dep_edit INTERFACE)
  target_link_libraries(dep_edit INTERFACE ${OSTREL_LIBEDIT})
endif()
