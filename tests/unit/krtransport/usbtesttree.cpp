#include "usbtesttree.h"

#include <fstream>
#include <stdexcept>
#include <vector>

namespace krtransport {
namespace {

namespace fs = std::filesystem;

std::string UnescapeText(const std::string& aText) {
  std::string text;
  for (std::size_t i = 0; i < aText.size(); ++i) {
    const bool isEscape = aText[i] == '\\' && i + 1 < aText.size();
    if (isEscape)
      ++i;
    text += isEscape && aText[i] == 'n' ? '\n' : aText[i];
  }
  return text;
}

std::string ReadHex(const std::string& aDigits) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < aDigits.size(); i += 2)
    bytes += static_cast<char>(std::stoi(aDigits.substr(i, 2), nullptr, 16));
  return bytes;
}

void WriteFile(const fs::path& aPath, const std::string& aBytes) {
  fs::create_directories(aPath.parent_path());
  std::ofstream file(aPath, std::ios::binary);
  file << aBytes;
  if (!file.flush())
    throw std::runtime_error("Writing " + aPath.string() + " failed.");
}

} // namespace

UsbTestTree::UsbTestTree(const std::string& aName) {
  if (aName.empty())
    return;
  std::ifstream file(fs::path(USB_TREES) / (aName + ".tree"));
  if (!file)
    throw std::runtime_error("There is no tree " + aName + ".");
  std::string line;
  while (std::getline(file, line))
    if (!line.empty())
      Unpack(line);
}

void UsbTestTree::Unpack(const std::string& aLine) {
  const std::string content = aLine.substr(3);
  const std::size_t equals = content.find('=');
  const std::string name = content.substr(0, equals);
  const std::string value = equals == std::string::npos ? std::string() : content.substr(equals + 1);
  switch (aLine[0]) {
  case 'P':
    mUnpacked = mFolder.GetPath() / "sys" / content.substr(1);
    fs::create_directories(mUnpacked);
    break;
  case 'N':
    WriteFile(mFolder.GetPath() / "dev" / name, {});
    break;
  case 'E':
    if (name != "SUBSYSTEM")
      break;
    fs::create_directories(mFolder.GetPath() / "sys/bus" / value / "devices");
    fs::create_symlink(mFolder.GetPath() / "sys/bus" / value, mUnpacked / "subsystem");
    fs::create_symlink(mUnpacked, mFolder.GetPath() / "sys/bus" / value / "devices" / mUnpacked.filename());
    break;
  case 'A':
    WriteFile(mUnpacked / name, UnescapeText(value));
    break;
  case 'H':
    WriteFile(mUnpacked / name, ReadHex(value));
    break;
  case 'L':
    fs::create_symlink(value, mUnpacked / name);
    break;
  default:
    throw std::runtime_error("A tree has the line " + aLine);
  }
}

void UsbTestTree::Unplug(const std::string& aPort) {
  Move(aPort, GetRoots().devices, mFolder.GetPath() / "unplugged");
}

void UsbTestTree::PlugIn(const std::string& aPort, std::uint32_t aAddress) {
  WriteFile(mFolder.GetPath() / "unplugged" / aPort / "devnum", std::to_string(aAddress) + "\n");
  Move(aPort, mFolder.GetPath() / "unplugged", GetRoots().devices);
}

void UsbTestTree::SetCoreParameter(const std::string& aName, const std::string& aText) {
  WriteFile(GetRoots().coreParameters / aName, aText);
}

void UsbTestTree::SetAttribute(const std::string& aPort, const std::string& aName, const std::string& aText) {
  WriteFile(GetRoots().devices / aPort / aName, aText);
}

void UsbTestTree::Move(const std::string& aPort, const fs::path& aFrom, const fs::path& aTo) {
  std::vector<fs::path> names;
  for (const auto& entry : fs::directory_iterator(aFrom)) {
    const std::string name = entry.path().filename().string();
    if (name == aPort || name.starts_with(aPort + ":"))
      names.push_back(name);
  }
  fs::create_directories(aTo);
  for (const fs::path& name : names)
    fs::rename(aFrom / name, aTo / name);
}

} // namespace krtransport
