# How the engine's targets are compiled and linked.

# Rounding, warnings and sanitizers, for every target.
function(zorvane_compile_options target)
  # A fused multiply-add rounds once where processors without it round twice,
  # and the evaluation must be the same on all of them.
  target_compile_options(${target} PRIVATE
    -ffp-contract=off
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
  if(ZORVANE_SANITIZE)
    # After the sanitizers' checks gcc no longer knows value ranges and warns about
    # what cannot happen, hence no errors here.
    set(sanitize -fsanitize=${ZORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -Wno-error)
    target_compile_options(${target} PRIVATE ${sanitize})
    target_link_options(${target} PRIVATE ${sanitize})
  endif()
endfunction()

# Optimises across the whole program and everything linked into the target. CMake's own switch for this would split
# the program up again.
function(zorvane_optimise_at_link_time target)
  if(NOT ZORVANE_LTO)
    return()
  endif()
  target_compile_options(${target} PRIVATE -flto)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_link_options(${target} PUBLIC -flto -flto-partition=one)
  else()
    target_link_options(${target} PUBLIC -flto -fuse-ld=lld)
  endif()
endfunction()
