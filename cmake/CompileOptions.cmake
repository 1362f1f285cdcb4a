# How the engine's targets are compiled and linked.
include(CheckIPOSupported)

if(ZORVANE_LTO)
  check_ipo_supported(RESULT lto_works OUTPUT lto_message LANGUAGES CXX)
  if(NOT lto_works)
    message(STATUS "No optimisation at link time: ${lto_message}")
  endif()
endif()

# Processor, warnings and sanitizers: for every target.
function(zorvane_compile_options target)
  # A fused multiply-add rounds once where the portable build rounds twice;
  # the evaluation must be the same on every processor.
  target_compile_options(${target} PRIVATE
    -march=${ZORVANE_ARCH} -ffp-contract=off
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
  if(ZORVANE_SANITIZE)
    # gcc loses sight of value ranges behind its own checks and then warns of
    # what cannot happen, hence no errors here.
    set(sanitize -fsanitize=${ZORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -Wno-error)
    target_compile_options(${target} PRIVATE ${sanitize})
    target_link_options(${target} PRIVATE ${sanitize})
  endif()
endfunction()

# Optimisation over the whole program and from a profile: for the program and
# the library it is made of. The tests do without, they would only link longer.
function(zorvane_optimise_program target)
  if(ZORVANE_LTO AND lto_works)
    set_target_properties(${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_link_options(${target} PRIVATE -flto-partition=one)  # several at a time would need make
    endif()
  endif()

  # A profile file is named by the path of its object file; without the build
  # folder in front, what the training build writes fits the final one. A
  # function that changed since the training is only a matter of speed, so in
  # that build warnings are no errors; every other build still has them.
  if(ZORVANE_PGO STREQUAL "GENERATE")
    set(profile -fprofile-generate=${ZORVANE_PGO_DIR} -fprofile-prefix-path=${PROJECT_BINARY_DIR})
  elseif(ZORVANE_PGO STREQUAL "USE")
    set(profile -fprofile-use=${ZORVANE_PGO_DIR} -fprofile-prefix-path=${PROJECT_BINARY_DIR}
      -Wno-missing-profile -Wno-coverage-mismatch -Wno-error)
  endif()
  if(profile AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE ${profile})
    target_link_options(${target} PRIVATE ${profile})
  endif()
endfunction()
