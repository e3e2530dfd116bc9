#include "recording/filenames.h"

#include <array>
#include <cstddef>
#include <ctime>

namespace krviewer {

namespace {

constexpr std::size_t kMostLetters = 60;

bool IsAlphanumeric(char aLetter) {
  return (aLetter >= 'a' && aLetter <= 'z') || (aLetter >= 'A' && aLetter <= 'Z') || (aLetter >= '0' && aLetter <= '9');
}

} // namespace

std::string MakePlainName(const std::string& aText) {
  std::string name;
  for (const char letter : aText) {
    const bool isKept = IsAlphanumeric(letter) || letter == '.' || letter == '_';
    if (isKept && (!name.empty() || IsAlphanumeric(letter)))
      name += letter;
    else if (!name.empty() && name.back() != '-')
      name += '-';
  }
  name.resize(name.size() < kMostLetters ? name.size() : kMostLetters);
  while (!name.empty() && !IsAlphanumeric(name.back()))
    name.pop_back();
  return name.empty() ? "camera" : name;
}

std::string MakeFrameName(const std::string& aCamera, std::uint64_t aFrameID) {
  return MakePlainName(aCamera) + "-" + std::to_string(aFrameID);
}

std::string MakeRecordingName(const std::string& aCamera, std::int64_t aSeconds) {
  const std::time_t time = aSeconds;
  std::tm local = {};
  ::localtime_r(&time, &local);
  std::array<char, 64> text = {};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &local);
  return MakePlainName(aCamera) + "-" + std::string(text.data(), length);
}

} // namespace krviewer
