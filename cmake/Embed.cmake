# Embed.cmake: writes OUTPUT, the C++ source with the contents of FILES, each found by its
# name through the function FUNCTION (with its namespace), which HEADER declares.
#   cmake -DFILES=A;B -DHEADER=PageFiles.h -DFUNCTION=velka::serve::pageFile -DOUTPUT=FILE
#     -P Embed.cmake
set(tables "")
set(rows "")
set(number 0)
foreach(file IN LISTS FILES)
  cmake_path(GET file FILENAME name)
  file(READ "${file}" bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
  string(APPEND tables "constexpr unsigned char kFile${number}[] = {\n${bytes}\n};\n")
  string(APPEND rows "    {\"${name}\", {reinterpret_cast<const char*>(kFile${number}), sizeof kFile${number}}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE "${OUTPUT}" "// Made by Embed.cmake.
#include \"${HEADER}\"

#include <utility>

namespace {
${tables}
const std::pair<std::string_view, std::string_view> kFiles[] = {
${rows}};
}  // namespace

std::optional<std::string_view> ${FUNCTION}(std::string_view name) {
  for (const auto& [known, bytes] : kFiles)
    if (known == name) return bytes;
  return std::nullopt;
}
")
