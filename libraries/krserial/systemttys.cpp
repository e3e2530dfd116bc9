#include "systemttys.h"

#include "krbase/krwholefile.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

namespace krserial {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostTextBytes = 4096; // As much as a file of sysfs holds.
constexpr int kMostParents = 16;

struct Kind {
  std::string_view prefix;
  std::string_view text;
  bool isUsb;
};
constexpr Kind kKinds[] = {
    {"ttyS", "Serial port ", false}, {"ttyUSB", "USB serial adapter ", true}, {"ttyACM", "USB serial device ", true}};

struct FoundTty {
  std::size_t kind = 0;
  std::uint32_t number = 0;
  std::string name;
  fs::path device; // Its folder of sysfs, without links; empty where there is none.
};

// A file's text without the end of its line; empty where there is none.
std::string ReadText(const fs::path& aFile) {
  std::string text;
  if (!KrReadWholeFile(aFile.string(), kMostTextBytes, text).IsOK())
    return {};
  text.erase(std::min(text.find_first_of(std::string_view("\n\0", 2)), text.size()));
  return text;
}

fs::path Resolve(const fs::path& aPath) {
  std::error_code error;
  fs::path resolved = fs::canonical(aPath, error);
  return error ? fs::path() : resolved;
}

// An identity is one line of words: anything else of a device's text is written as its bytes' numbers.
std::string Escape(std::string_view aText) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string escaped;
  for (const char character : aText) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                         std::string_view("-_.:/").find(character) != std::string_view::npos;
    if (isPlain)
      escaped += character;
    else
      (escaped += '%') += {kDigits[byte >> 4U], kDigits[byte & 15U]};
  }
  return escaped;
}

std::optional<FoundTty> ParseName(const std::string& aName) {
  for (std::size_t kind = 0; kind < std::size(kKinds); ++kind) {
    const std::string_view prefix = kKinds[kind].prefix;
    if (!aName.starts_with(prefix))
      continue;
    std::uint32_t number = 0;
    const char* const end = aName.data() + aName.size();
    const auto [rest, error] = std::from_chars(aName.data() + prefix.size(), end, number);
    if (error == std::errc() && rest == end)
      return FoundTty{.kind = kind, .number = number, .name = aName, .device = {}};
  }
  return std::nullopt;
}

// The driver of the old serial ports makes ttys for ports that a machine might have: they have no type. Other drivers
// state none at all; then it is the device that counts, unless it is that driver's stand-in for ports that nobody told
// it of.
bool HasHardware(const fs::path& aFolder, const FoundTty& aTty) {
  if (kKinds[aTty.kind].isUsb)
    return true;
  if (const std::string type = ReadText(aFolder / "type"); !type.empty())
    return type != "0";
  return !aTty.device.empty() && aTty.device.string().find("/serial8250") == std::string::npos;
}

// The first folder from a device's upwards that has a file; empty where none has.
fs::path FindParentWith(fs::path aFolder, const char* aFile) {
  std::error_code error;
  for (int count = 0; count < kMostParents && aFolder.has_relative_path(); ++count) {
    if (fs::exists(aFolder / aFile, error))
      return aFolder;
    aFolder = aFolder.parent_path();
  }
  return {};
}

// Newer systems put folders of their own between a serial port and its device.
fs::path SkipSerialBase(fs::path aFolder) {
  std::error_code error;
  for (int count = 0; count < kMostParents; ++count) {
    if (fs::read_symlink(aFolder / "subsystem", error).filename() != "serial-base")
      break;
    aFolder = aFolder.parent_path();
  }
  return aFolder;
}

TtyIdentity MakeUsbIdentity(const fs::path& aTty, const fs::path& aUsbDevice) {
  const std::string serial = Escape(ReadText(aUsbDevice / "serial"));
  const std::string place = "@" + Escape(aUsbDevice.filename().string());
  const fs::path interface = FindParentWith(aTty, "bInterfaceNumber");
  std::string text = "usb " + Escape(ReadText(aUsbDevice / "idVendor")) + ":" +
                     Escape(ReadText(aUsbDevice / "idProduct")) + " " + (serial.empty() ? place : serial) +
                     " interface " +
                     (interface.empty() ? std::string() : Escape(ReadText(interface / "bInterfaceNumber")));
  // Of several ttys of one interface.
  if (const std::string port = ReadText(aTty / "port_number"); !port.empty())
    text += " port " + Escape(port);
  return {.text = text, .place = serial.empty() ? std::string() : place};
}

TtyIdentity MakeIdentity(const FoundTty& aTty) {
  const fs::path usbDevice = kKinds[aTty.kind].isUsb ? FindParentWith(aTty.device, "idVendor") : fs::path();
  if (!usbDevice.empty())
    return MakeUsbIdentity(aTty.device, usbDevice);
  return {.text = "path " + Escape(SkipSerialBase(aTty.device).string() + "/" + aTty.name)};
}

KrResult FindNames(const fs::path& aSysfs, std::vector<FoundTty>& aTtys) {
  std::error_code error;
  for (fs::directory_iterator entry(aSysfs, error), end; !error && entry != end; entry.increment(error))
    if (std::optional<FoundTty> tty = ParseName(entry->path().filename().string())) {
      tty->device = Resolve(entry->path() / "device");
      if (HasHardware(entry->path(), *tty))
        aTtys.push_back(std::move(*tty));
    }
  if (error && error != std::errc::no_such_file_or_directory)
    return {KrResult::Code::SystemError, "Reading the folder " + aSysfs.string() + ": " + error.message() + "."};
  return {};
}

} // namespace

KrResult FindSystemTtys(const std::string& aSysfs, const std::string& aDevices, std::vector<SystemTty>& aTtys) {
  std::vector<FoundTty> found;
  if (KrResult names = FindNames(aSysfs, found); !names.IsOK())
    return names;
  std::erase_if(found, [&aDevices](const FoundTty& aTty) {
    std::error_code error;
    return !fs::exists(fs::path(aDevices) / aTty.name, error);
  });
  std::ranges::sort(found, {}, [](const FoundTty& aTty) { return std::pair(aTty.kind, aTty.number); });
  aTtys.clear();
  for (const FoundTty& tty : found)
    aTtys.push_back({.path = (fs::path(aDevices) / tty.name).string(),
                     .identity = MakeIdentity(tty),
                     .text = std::string(kKinds[tty.kind].text) + tty.name});
  return {};
}

} // namespace krserial
