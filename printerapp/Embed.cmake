# Writes a source file that holds two text files word for word:
#   cmake -DSTANDARD=FILE -DORLO=FILE -DOUTPUT=FILE -P Embed.cmake
function(literal name file)
  file(READ "${file}" text)
  set(text_${name} "${text}" PARENT_SCOPE)
endfunction()
literal(standard "${STANDARD}")
literal(orlo "${ORLO}")
file(WRITE "${OUTPUT}" "// Made from the PPDs by printerapp/Embed.cmake.
#include \"EmbeddedPpds.h\"

namespace velka::app {

std::string_view standardPpd() noexcept {
  return R\"VELKA(${text_standard})VELKA\";
}

std::string_view orloPpd() noexcept {
  return R\"VELKA(${text_orlo})VELKA\";
}

}  // namespace velka::app
")
