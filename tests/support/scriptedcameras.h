#pragma once
// Two cameras that are the tests' own: they speak as docs/camera-files says of its examples, with code that shares
// nothing with the product's.

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace krtest {

/// docs/camera-files/text-camera.yml. Thread: any.
class TextCamera {
public:
  TextCamera();

  /// Takes a piece of what is sent to it, and gives its answers.
  std::string Take(std::string_view aBytes);
  /// What it has for a word of its commands.
  std::string Get(const std::string& aWord) const;
  void Set(const std::string& aWord, const std::string& aValue);
  /// The commands that it took as good, without their ends.
  std::vector<std::string> GetCommands() const;
  /// A message with its sum and end.
  static std::string Frame(const std::string& aText, const std::string& aEnd = "\r\n");

private:
  std::string Do(const std::string& aCommand);
  std::string DoSet(const std::string& aWord, const std::string& aValue);

  mutable std::mutex mMutex; // Guards the members.
  std::string mRest;
  std::map<std::string, std::string> mValues;
  std::vector<std::string> mCommands;
};

/// docs/camera-files/binary-camera.yml. Thread: any.
class BinaryCamera {
public:
  BinaryCamera();

  std::string Take(std::string_view aBytes);
  /// The bytes of a register.
  std::string Get(std::uint8_t aNumber) const;
  void Set(std::uint8_t aNumber, const std::string& aBytes);
  static std::string Frame(const std::string& aBody);

private:
  std::string Do(const std::string& aBody);

  mutable std::mutex mMutex; // Guards the members.
  std::string mRest;
  std::map<std::uint8_t, std::string> mRegisters;
};

} // namespace krtest
