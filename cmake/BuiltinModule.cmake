# builtin_add_module: a module of builtins as a bundle that hosts find.
#
#   builtin_add_module(mymodule SOURCES src/MyModule.cpp [LIBS ...]
#                      [TARGET target] [OUTPUT_DIRECTORY dir])
#
# builds the sources into a shared object that offers the module, and writes beside it the
# manifest that names the module, so that the name is written once: the sources get it as the
# macro KELDOR_MODULE_NAME, for KELDOR_BUILTIN_MODULE(KELDOR_MODULE_NAME, declare). The bundle
# lands in <dir>/<name>/ (by default ${CMAKE_BINARY_DIR}/modules/<name>/), and
# `kcall --modules <dir>` finds it. The target is <name>_module unless TARGET names it.
function(builtin_add_module name)
  cmake_parse_arguments(arg "" "TARGET;OUTPUT_DIRECTORY" "SOURCES;LIBS" ${ARGN})
  if(NOT arg_SOURCES)
    message(FATAL_ERROR "builtin_add_module(${name}): no SOURCES")
  endif()
  if(NOT name MATCHES "^[A-Za-z_][A-Za-z0-9_]*$")
    message(FATAL_ERROR "builtin_add_module(${name}): a module name is letters, digits and _")
  endif()
  set(target ${arg_TARGET})
  if(NOT target)
    set(target ${name}_module)
  endif()
  set(folder ${arg_OUTPUT_DIRECTORY})
  if(NOT folder)
    set(folder ${CMAKE_BINARY_DIR}/modules)
  endif()
  set(folder ${folder}/${name})

  add_library(${target} MODULE ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE builtin::builtin platform::services platform::ka
                                          ${arg_LIBS})
  target_compile_definitions(${target} PRIVATE KELDOR_MODULE_NAME="${name}")
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME keldor_${name}_module
    LIBRARY_OUTPUT_DIRECTORY ${folder}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  file(GENERATE OUTPUT ${folder}/manifest.json CONTENT "{
  \"bundle.symbolic_name\": \"keldor_${name}_module\",
  \"bundle.library\": \"$<TARGET_FILE_NAME:${target}>\",
  \"builtin-module\": \"${name}\"
}
")
endfunction()
