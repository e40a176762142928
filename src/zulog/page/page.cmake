# Makes zlPageParts.cpp from the files of this folder; ZL_PAGE_PARTS is its path. It is included by
# the folder above.
set(ZL_PAGE_PARTS "${CMAKE_CURRENT_BINARY_DIR}/zlPageParts.cpp")
set(pageFolder "${CMAKE_CURRENT_LIST_DIR}")
add_custom_command(
  OUTPUT "${ZL_PAGE_PARTS}"
  COMMAND "${CMAKE_COMMAND}" "-DFOLDER=${pageFolder}" "-DOUT=${ZL_PAGE_PARTS}" -P
          "${pageFolder}/embed.cmake"
  DEPENDS "${pageFolder}/embed.cmake" "${pageFolder}/page.css" "${pageFolder}/page.html"
          "${pageFolder}/page.js"
  COMMENT "Embedding the parts of the page of zulog"
  VERBATIM)
