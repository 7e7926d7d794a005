# Writes OUT, a C++ file that holds the files of FOLDER named by FILES (separated by `|`), for
# cli/wizard/Assets.h.

string(REPLACE "|" ";" files "${FILES}")
set(arrays "")
set(entries "")
set(number 0)
foreach(file ${files})
  file(READ ${FOLDER}/${file} hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
  get_filename_component(ending ${file} LAST_EXT)
  if(ending STREQUAL ".html")
    set(type "text/html; charset=utf-8")
  elseif(ending STREQUAL ".css")
    set(type "text/css; charset=utf-8")
  elseif(ending STREQUAL ".js")
    set(type "text/javascript; charset=utf-8")
  elseif(ending STREQUAL ".svg")
    set(type "image/svg+xml")
  else()
    message(FATAL_ERROR "${file}: no content type is known for it")
  endif()
  string(APPEND arrays "constexpr char kBytes${number}[] = {${bytes}'\\0'};\n")
  string(APPEND entries
    "    {\"/${file}\", \"${type}\", {kBytes${number}, sizeof kBytes${number} - 1}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUT} "#include \"cli/wizard/Assets.h\"\n\nnamespace cli {\nnamespace {\n\n${arrays}\n"
  "constexpr Asset kAssets[] = {\n${entries}};\n\n}  // namespace\n\n"
  "const Asset* FindAsset(std::string_view path) {\n"
  "  for (const Asset& asset : kAssets) {\n    if (asset.path == path) return &asset;\n  }\n"
  "  return nullptr;\n}\n\n}  // namespace cli\n")
