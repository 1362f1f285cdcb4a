# How the engine's targets are compiled and linked.
# Rounding, warnings and sanitizers: for every target.
function(zorvane_compile_options target)
  # A fused multiply-add rounds once where processors without it round twice;
  # the evaluation must be the same on every one.
  target_compile_options(${target} PRIVATE
    -ffp-contract=off
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
  if(ZORVANE_SANITIZE)
    # gcc loses sight of value ranges behind its own checks and then warns of
    # what cannot happen, hence no errors here.
    set(sanitize -fsanitize=${ZORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -Wno-error)
    target_compile_options(${target} PRIVATE ${sanitize})
    target_link_options(${target} PRIVATE ${sanitize})
  endif()
endfunction()

# Optimisation over the whole program, and over all that is linked with the target. CMake's own switch for it would
# split the program up again.
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
