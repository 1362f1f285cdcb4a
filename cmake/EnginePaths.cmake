# The paths: the engine is compiled once for each kind of processor.
#   base   any processor: no -march option
#   avx2   x86-64-v3: Intel since Haswell, AMD since Excavator, and compatible processors
#   pext   those of them on which PEXT is faster than a multiplication
set(zorvane_path_options_avx2 -march=x86-64-v3)
set(zorvane_path_options_pext -march=x86-64-v3)
set(zorvane_path_definitions_pext ZORVANE_PEXT)

# Adds the library zorvane_engine_PATH. With one path, the namespace is zorvane, as in the sources. With several, a
# definition renames it to zorvane_PATH in each library, so that no names clash and the sources need not care. Targets
# that link the library inherit its options.
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
