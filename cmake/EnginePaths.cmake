# The paths: the engine compiled for one kind of processor each.
#   base   any processor, for the sake of which the compiler is told nothing
#   avx2   x86-64-v3, that is Intel's processors from Haswell on, AMD's from Excavator on, and what is compatible
#   pext   the same, and those of them where PEXT is quicker than a multiplication
set(zorvane_path_options_avx2 -march=x86-64-v3)
set(zorvane_path_options_pext -march=x86-64-v3)
set(zorvane_path_definitions_pext ZORVANE_PEXT)

# Adds the library zorvane_engine_PATH. A program has the one path it was configured with, in the namespace zorvane of
# the sources, or several, and then that namespace is called zorvane_PATH in each: no name of one path meets the same
# name of another, and the sources need not know of it. Whoever links the library is compiled alike.
function(zorvane_add_engine path)
  set(engine zorvane_engine_${path})
  add_library(${engine} OBJECT ${ARGN})
  target_include_directories(${engine} PUBLIC src)
  target_compile_options(${engine} PRIVATE -fno-exceptions -fno-rtti PUBLIC ${zorvane_path_options_${path}})
  target_compile_definitions(${engine} PUBLIC ${zorvane_path_definitions_${path}})
  list(LENGTH ZORVANE_PATHS paths)
  if(paths GREATER 1)
    target_compile_definitions(${engine} PUBLIC zorvane=zorvane_${path})
  endif()
  target_link_libraries(${engine} PUBLIC Threads::Threads)
  zorvane_compile_options(${engine})
  zorvane_optimise_at_link_time(${engine})
endfunction()
