# Writes a source that holds files: cmake -DOUTPUT=... -DFILES=a;b -P embed_files.cmake
set(arrays "")
set(entries "")
set(number 0)
foreach(file IN LISTS FILES)
  get_filename_component(name ${file} NAME)
  file(READ ${file} bytes HEX)
  string(LENGTH "${bytes}" digits)
  math(EXPR size "${digits} / 2")
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  string(REGEX REPLACE "(................................................................................)" "\\1\n"
         bytes "${bytes}")
  string(APPEND arrays "const unsigned char file_${number}[] = {\n${bytes}};\n")
  string(APPEND entries "    {\"${name}\", textOf(file_${number}, ${size})},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT}.new "#include \"viewing/serving/embedded_files.h\"

#include <cstddef>

namespace mdf_tools {

namespace {

${arrays}
std::string_view textOf(const unsigned char* bytes, std::size_t size) {
  return {reinterpret_cast<const char*>(bytes), size};
}

}  // namespace

const std::vector<EmbeddedFile>& embeddedFiles() {
  static const std::vector<EmbeddedFile> files = {
${entries}  };
  return files;
}

}  // namespace mdf_tools
")
file(RENAME ${OUTPUT}.new ${OUTPUT})
