#include "scriptedcameras.h"

#include <cstdio>
#include <cstdlib>

namespace krtest {

namespace {

constexpr unsigned kMostBodyBytes = 16;

std::string GetSum(const std::string& aText) {
  unsigned sum = 0;
  for (const char character : aText)
    sum += static_cast<unsigned char>(character);
  char text[8];
  std::snprintf(text, sizeof text, "%02X", sum & 0xFF);
  return text;
}

// The CRC-16 that begins with all ones and takes the lowest bit first.
std::string GetCrc(const std::string& aText) {
  unsigned crc = 0xFFFF;
  for (const char character : aText) {
    crc ^= static_cast<unsigned char>(character);
    for (int i = 0; i < 8; ++i)
      crc = crc % 2 == 1 ? crc / 2 ^ 0xA001 : crc / 2;
  }
  return {static_cast<char>(crc % 256), static_cast<char>(crc / 256)};
}

const std::map<std::string, std::string>& GetFirstValues() {
  static const std::map<std::string, std::string> values = {
      {"WIDTH", "4096"}, {"BITS", "8"},           {"GAIN E", "30"}, {"GAIN O", "31"},  {"AUTO", "OFF"},
      {"EXP", "100.5"},  {"VER", "1.07 build 3"}, {"NAME", "left"}, {"TEMP", "+41.5"},
  };
  return values;
}

const std::map<std::uint8_t, std::string>& GetFirstRegisters() {
  static const std::map<std::uint8_t, std::string> registers = {
      {0x01, std::string("\x00\x00\xC0\x01", 4)},
      {0x02, "right"},
      {0x10, std::string("\x04\x00", 2)},
      {0x11, std::string("\x00", 1)},
      {0x20, std::string("\xFF\xFE", 2)},
      {0x21, std::string("\x3F\x80\x00\x00", 4)},
      {0x22, std::string("\x00", 1)},
  };
  return registers;
}

} // namespace

TextCamera::TextCamera() : mValues(GetFirstValues()) {}

std::string TextCamera::Frame(const std::string& aText, const std::string& aEnd) {
  return aText + "*" + GetSum(aText + "*") + aEnd;
}

std::string TextCamera::Take(std::string_view aBytes) {
  const std::lock_guard lock(mMutex);
  mRest += aBytes;
  std::string answers;
  for (std::size_t end = mRest.find('\r'); end != std::string::npos; end = mRest.find('\r')) {
    const std::string line = mRest.substr(0, end);
    mRest.erase(0, end + 1);
    const std::string command = line.size() > 3 ? line.substr(0, line.size() - 3) : std::string();
    answers += Frame(Frame(command, "") == line && !command.empty() ? Do(command) : "BAD");
  }
  return answers;
}

std::string TextCamera::Do(const std::string& aCommand) {
  mCommands.push_back(aCommand);
  if (aCommand == "SAVE")
    return "OK";
  if (aCommand == "RESET") {
    mValues = GetFirstValues();
    return "OK";
  }
  if (aCommand.back() == '?') {
    const auto value = mValues.find(aCommand.substr(0, aCommand.size() - 1));
    if (value == mValues.end())
      return "ERR 2";
    return value->first + "=" + value->second + (value->first == "TEMP" ? "C" : "");
  }
  const std::size_t sign = aCommand.find('=');
  return sign == std::string::npos ? "ERR 2" : DoSet(aCommand.substr(0, sign), aCommand.substr(sign + 1));
}

std::string TextCamera::DoSet(const std::string& aWord, const std::string& aValue) {
  if (aWord == "TRIG") {
    mValues[aWord] = aValue;
    return "OK";
  }
  if (!mValues.contains(aWord) || aWord == "VER" || aWord == "TEMP")
    return "ERR 2";
  if (aWord == "GAIN E" && std::atoi(aValue.c_str()) > 200)
    return "ERR 3";
  if (aWord == "NAME" && aValue == "taken")
    return "ERR 9 another camera is called that";
  mValues[aWord] = aValue;
  // The exposure that the camera chooses.
  if (aWord == "AUTO" && aValue == "ON")
    mValues["EXP"] = "77.5";
  return "OK";
}

std::string TextCamera::Get(const std::string& aWord) const {
  const std::lock_guard lock(mMutex);
  const auto value = mValues.find(aWord);
  return value == mValues.end() ? std::string() : value->second;
}

void TextCamera::Set(const std::string& aWord, const std::string& aValue) {
  const std::lock_guard lock(mMutex);
  mValues[aWord] = aValue;
}

std::vector<std::string> TextCamera::GetCommands() const {
  const std::lock_guard lock(mMutex);
  return mCommands;
}

BinaryCamera::BinaryCamera() : mRegisters(GetFirstRegisters()) {}

std::string BinaryCamera::Frame(const std::string& aBody) {
  const std::string message = std::string("\x02") + static_cast<char>(aBody.size()) + aBody;
  return message + GetCrc(message);
}

std::string BinaryCamera::Take(std::string_view aBytes) {
  const std::lock_guard lock(mMutex);
  mRest += aBytes;
  std::string answers;
  while (!mRest.empty()) {
    // No command is longer than a name, so that a damaged length does not keep it waiting.
    if (mRest[0] != '\x02' || (mRest.size() > 1 && static_cast<unsigned char>(mRest[1]) > kMostBodyBytes)) {
      mRest.erase(0, 1);
      continue;
    }
    if (mRest.size() < 2 || mRest.size() < 4U + static_cast<unsigned char>(mRest[1]))
      break;
    const std::string body = mRest.substr(2, static_cast<unsigned char>(mRest[1]));
    const std::string message = mRest.substr(0, body.size() + 4);
    if (Frame(body) == message) {
      answers += Frame(Do(body));
      mRest.erase(0, message.size());
    } else {
      answers += Frame("E\xFF");
      mRest.clear(); // What follows cannot be told from what was damaged.
    }
  }
  return answers;
}

std::string BinaryCamera::Do(const std::string& aBody) {
  if (aBody.size() < 2)
    return "E\x01";
  if (aBody[0] == 'X') {
    mRegisters = GetFirstRegisters();
    return aBody;
  }
  const auto number = static_cast<std::uint8_t>(aBody[1]);
  const auto place = mRegisters.find(number);
  if (place == mRegisters.end())
    return "E\x01";
  if (aBody[0] == 'R')
    return aBody.substr(0, 2) + place->second;
  if (number == 0x01)
    return "E\x03";
  if (number == 0x10 && aBody.substr(2) == std::string("\x07\xF8", 2))
    return "E\x02"; // 2040 is a width that it does not like.
  place->second = aBody.substr(2);
  return aBody.substr(0, 2);
}

std::string BinaryCamera::Get(std::uint8_t aNumber) const {
  const std::lock_guard lock(mMutex);
  const auto place = mRegisters.find(aNumber);
  return place == mRegisters.end() ? std::string() : place->second;
}

void BinaryCamera::Set(std::uint8_t aNumber, const std::string& aBytes) {
  const std::lock_guard lock(mMutex);
  mRegisters[aNumber] = aBytes;
}

} // namespace krtest
