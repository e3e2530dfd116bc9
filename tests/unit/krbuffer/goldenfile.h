#pragma once
// The images in golden/: small ones of every format, each with what it becomes. Where the values come from stands at
// the head of each file.

#include <cstdint>
#include <string>
#include <vector>

/// One line of a file: a source and what is written behind the second bar.
struct GoldenImage {
  std::string name; ///< Of the file and line, for messages.
  std::string format;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t paddingX = 0; ///< Bytes behind each line, and behind the last one.
  std::uint32_t paddingY = 0;
  std::vector<std::uint8_t> bytes;
  std::vector<std::string> result; ///< The words of the result.
};

/// The images of a file in golden/; a line that cannot be read fails the running test.
std::vector<GoldenImage> ReadGoldenFile(const std::string& aFile);

/// The bytes of words of one or more bytes each in hexadecimal digits.
std::vector<std::uint8_t> ToBytes(const std::string& aDigits);
