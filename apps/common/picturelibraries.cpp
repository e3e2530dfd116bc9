#include "picturelibraries.h"

#include <png.h>
#include <tiffio.h>

namespace krapps {

std::vector<std::string> GetPictureLibraries() {
  // libtiff's text begins with "LIBTIFF, Version 4.5.0", with its makers in further lines.
  const std::string tiff = TIFFGetVersion();
  const std::size_t begin = tiff.find_first_of("0123456789");
  const std::string version = begin == std::string::npos ? "" : tiff.substr(begin, tiff.find('\n') - begin);
  return {std::string("libpng ") + png_get_libpng_ver(nullptr), "libtiff " + version};
}

} // namespace krapps
