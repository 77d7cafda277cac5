# How everything here is compiled and linked, as the interface target QvGpsOptions.

include(CheckCXXCompilerFlag)

add_library(QvGpsOptions INTERFACE)
target_compile_options(QvGpsOptions INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  # GCC 12 reports false overlaps in std::string additions (GCC bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  # No fused multiply-add, so that position arithmetic gives the same bits on every processor.
  -ffp-contract=off
  # The same sources give the same bytes in any build directory.
  -ffile-prefix-map=${PROJECT_BINARY_DIR}=build -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)

# add_known_options(options FLAG...): appends the flags that the compiler knows; some depend on the processor.
function(add_known_options options)
  foreach(flag ${ARGN})
    string(MAKE_C_IDENTIFIER "QVGPS_HAS${flag}" has_flag)
    check_cxx_compiler_flag(${flag} ${has_flag})
    if(${has_flag})
      list(APPEND ${options} ${flag})
    endif()
  endforeach()
  set(${options} "${${options}}" PARENT_SCOPE)
endfunction()

# For speed. GCC for x86 clears and copies records by string instructions, whose start alone takes longer than the C
# library's functions; and calls of other libraries need no detour through the PLT.
add_known_options(fast -mstringop-strategy=libcall -fno-plt)
target_compile_options(QvGpsOptions INTERFACE ${fast})

if(QVGPS_SANITIZE)
  add_compile_options(-fsanitize=${QVGPS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QVGPS_SANITIZE})
  if(QVGPS_SANITIZE MATCHES "address" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports its own regular expressions.
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
elseif(QVGPS_HARDENING)
  add_known_options(hardening
    -fstack-protector-strong -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
  target_compile_options(QvGpsOptions INTERFACE
    "$<$<NOT:$<CONFIG:Debug>>:${hardening};-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
  target_link_options(QvGpsOptions INTERFACE "$<$<NOT:$<CONFIG:Debug>>:-Wl,-z,relro,-z,now>")
endif()
