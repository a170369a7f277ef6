# Debian's hardening flags, as its own packages are built with, from
# dpkg-buildflags where it is installed (`make package` and `make test`
# install it). Optimisation and debug information stay the build type's.
# _FORTIFY_SOURCE works only in an optimised build, and the sanitizers'
# own checks would not see the fortified calls, so those builds go without.
# They are for the machine's own code, not WebAssembly: its return
# addresses lie out of reach of the program's memory, and its linker has
# no relocation guards to give.
find_program(DPKG_BUILDFLAGS dpkg-buildflags)
if(NOT DPKG_BUILDFLAGS OR EMSCRIPTEN)
  return()
endif()

function(quorble_buildflags name out)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env DEB_BUILD_MAINT_OPTIONS=hardening=+all
      "DEB_${name}_MAINT_STRIP=-g -O2" ${DPKG_BUILDFLAGS} --get ${name}
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    OUTPUT_VARIABLE flags
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  set(${out} ${flags} PARENT_SCOPE)
endfunction()

quorble_buildflags(CXXFLAGS hardening_compile)
quorble_buildflags(LDFLAGS hardening_link)
add_compile_options(${hardening_compile})
add_link_options(${hardening_link})
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT QUORBLE_SANITIZE AND NOT QUORBLE_FUZZ)
  quorble_buildflags(CPPFLAGS hardening_preprocess)
  add_compile_options(${hardening_preprocess})
endif()
