# tolvan_resources(TARGET ID FILE [ID FILE]...)
# Puts files into an executable, where FindOwnResource (platform/resources.h) and
# FindResourceInFile find them by their ids. Once per target; files are given by full path.
# On Windows they are resources of the raw-data type; on the host they lie in the section
# .tolvan_rsrc behind a table sorted by id, whose shape src/platform/executable_image.h tells.
if(NOT WIN32)
  enable_language(ASM)
endif()

function(tolvan_resources target)
  set(pairs ${ARGN})
  set(ids "")
  set(files "")
  while(pairs)
    list(POP_FRONT pairs id file)
    list(APPEND ids ${id})
    list(APPEND files ${file})
    set(file_${id} ${file})
  endwhile()
  list(SORT ids COMPARE NATURAL)
  list(LENGTH ids count)
  if(WIN32)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}_resources.rc)
    set(text "")
    foreach(id IN LISTS ids)
      string(APPEND text "${id} RCDATA \"${file_${id}}\"\n")
    endforeach()
  else()
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}_resources.s)
    set(table "")
    set(data "")
    foreach(id IN LISTS ids)
      string(APPEND table ".long ${id}, begin${id} - begin, end${id} - begin${id}\n")
      string(APPEND data ".balign 16\nbegin${id}: .incbin \"${file_${id}}\"\nend${id}:\n")
    endforeach()
    set(text ".section .tolvan_rsrc, \"a\"\n.balign 16\n"
             ".globl tolvan_resources_begin, tolvan_resources_end\n"
             ".hidden tolvan_resources_begin, tolvan_resources_end\n"
             "tolvan_resources_begin:\nbegin: .ascii \"TOLVANRC\"\n.long ${count}, 0\n"
             "${table}${data}tolvan_resources_end:\n"
             ".section .note.GNU-stack, \"\"\n")
    list(JOIN text "" text)
  endif()
  file(GENERATE OUTPUT ${source} CONTENT "${text}")
  set_source_files_properties(${source} PROPERTIES OBJECT_DEPENDS "${files}")
  target_sources(${target} PRIVATE ${source})
endfunction()

# tolvan_product(TARGET)
# What Windows reads from the product's file before it starts: the manifest, which asks for
# administrator rights and promises to draw for each monitor's own density, and the version that the
# file's properties show. The host has no such thing.
function(tolvan_product target)
  if(NOT WIN32)
    return()
  endif()
  set(from ${PROJECT_SOURCE_DIR}/src/platform/win32/entry)
  configure_file(${from}/product.manifest.in ${CMAKE_CURRENT_BINARY_DIR}/product.manifest @ONLY)
  configure_file(${from}/product.rc.in ${CMAKE_CURRENT_BINARY_DIR}/product.rc @ONLY)
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/product.rc PROPERTIES
                              OBJECT_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/product.manifest)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/product.rc)
endfunction()
