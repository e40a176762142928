# Makes a C++ source with the bytes of page.css, page.html and page.js, and the hashes by which a
# page's policy names its style and its script.
#
# usage: cmake -DFOLDER=<folder of the files> -DOUT=<source to write> -P embed.cmake
cmake_minimum_required(VERSION 3.20)

# Compilers need not accept longer literals.
set(longest 15000)
set(delimiter "zulogPage")

# Six bits of a number, from `shift` on, as a digit of base64.
function(zl_digit bits shift digit)
  set(digits "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  math(EXPR place "(${bits} >> ${shift}) & 63")
  string(SUBSTRING "${digits}" ${place} 1 found)
  set(${digit} "${found}" PARENT_SCOPE)
endfunction()

# The SHA-256 of a file in base64: 30 bytes in groups of three, and two more.
function(zl_hash file result)
  file(SHA256 "${file}" hex)
  set(text "")
  foreach(group RANGE 10)
    math(EXPR place "${group} * 6")
    string(SUBSTRING "${hex}00" ${place} 6 bytes)
    foreach(shift 18 12 6 0)
      zl_digit("0x${bytes}" ${shift} digit)
      string(APPEND text "${digit}")
    endforeach()
  endforeach()
  string(SUBSTRING "${text}" 0 43 text)
  set(${result} "${text}=" PARENT_SCOPE)
endfunction()

# A function that returns the text of a file.
function(zl_embed file name)
  file(READ "${FOLDER}/${file}" text)
  if(text MATCHES "[^\n\t -~]")
    message(FATAL_ERROR "${file} contains other characters than those of ASCII")
  endif()
  string(FIND "${text}" ")${delimiter}\"" place)
  if(NOT place EQUAL -1)
    message(FATAL_ERROR "${file} contains )${delimiter}\"")
  endif()
  string(LENGTH "${text}" length)
  set(literals "")
  set(place 0)
  while(place LESS length)
    string(SUBSTRING "${text}" ${place} ${longest} piece)
    string(APPEND literals "\n    R\"${delimiter}(${piece})${delimiter}\"")
    math(EXPR place "${place} + ${longest}")
  endwhile()
  file(APPEND "${OUT}" "std::string_view ${name}()\n{\n    return${literals};\n}\n\n")
endfunction()

# A function that returns the hash of a file.
function(zl_embed_hash file name)
  zl_hash("${FOLDER}/${file}" hash)
  file(APPEND "${OUT}" "std::string_view ${name}()\n{\n    return \"${hash}\";\n}\n\n")
endfunction()

file(WRITE "${OUT}" "// Made by embed.cmake.\n\n#include \"zulog/zlPageParts.h\"\n\n"
                    "namespace Zu\n{\n\n")
zl_embed(page.css zlPageStyle)
zl_embed(page.html zlPageViewer)
zl_embed(page.js zlPageScript)
zl_embed_hash(page.css zlPageStyleHash)
zl_embed_hash(page.js zlPageScriptHash)
file(APPEND "${OUT}" "} // namespace Zu\n")
