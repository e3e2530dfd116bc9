#pragma once
// A PNG file as its library reads it back, for tests.

#include <gtest/gtest.h>

#include <png.h>

#include <string>
#include <vector>

/// What a file holds, read when it is made; 8 bits a sample.
class PngFile {
public:
  explicit PngFile(const std::string& aPath) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, aPath.c_str()) == 0) {
      ADD_FAILURE() << aPath << ": " << image.message;
      return;
    }
    width = image.width;
    height = image.height;
    hasColour = (image.format & PNG_FORMAT_FLAG_COLOR) != 0;
    hasAlpha = (image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
    bytes.resize(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr), 0) << image.message;
  }

  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool hasColour = false;
  bool hasAlpha = false;
  std::vector<std::uint8_t> bytes;
};
