#include "goldenfile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

GoldenImage ReadLine(const std::string& aName, const std::string& aLine) {
  GoldenImage image;
  image.name = aName;
  std::istringstream line(aLine);
  std::string size;
  std::string word;
  line >> image.format >> size >> word;
  EXPECT_EQ(word, "|") << aName;
  std::istringstream sizes(size);
  char by = 0;
  sizes >> image.width >> by >> image.height;
  EXPECT_TRUE(sizes && by == 'x') << aName;
  char plus = 0;
  if (sizes >> plus) {
    sizes >> image.paddingX >> plus >> image.paddingY;
    EXPECT_TRUE(sizes && plus == '+') << aName;
  }
  while (line >> word && word != "|") {
    const std::vector<std::uint8_t> bytes = ToBytes(word);
    image.bytes.insert(image.bytes.end(), bytes.begin(), bytes.end());
  }
  EXPECT_EQ(word, "|") << aName;
  while (line >> word)
    image.result.push_back(word);
  return image;
}

} // namespace

std::vector<GoldenImage> ReadGoldenFile(const std::string& aFile) {
  std::vector<GoldenImage> images;
  std::ifstream file(std::string(KRBUFFER_GOLDEN_FOLDER) + "/" + aFile);
  std::string line;
  for (int number = 1; std::getline(file, line); ++number)
    if (!line.empty() && line.front() != '#')
      images.push_back(ReadLine(aFile + ", line " + std::to_string(number), line));
  EXPECT_FALSE(images.empty()) << aFile;
  return images;
}

std::vector<std::uint8_t> ToBytes(const std::string& aDigits) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i + 1 < aDigits.size(); i += 2)
    bytes.push_back(static_cast<std::uint8_t>(std::stoi(aDigits.substr(i, 2), nullptr, 16)));
  return bytes;
}
