// Whatever the kernel's folders may hold of serial ports, the texts of USB adapters among it: the ttys that are found
// are there, in their order, and their identities are one line of words each.

#include "systemttys.h"
#include "foldertree.h"
#include "require.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace krserial;

constexpr std::size_t kMostBytes = 16384;
constexpr std::string_view kPrefixes[] = {"ttyS", "ttyUSB", "ttyACM"};

bool IsPlain(char aCharacter) {
  const bool isLetter = (aCharacter >= 'a' && aCharacter <= 'z') || (aCharacter >= 'A' && aCharacter <= 'Z');
  return isLetter || (aCharacter >= '0' && aCharacter <= '9') ||
         std::string_view("-_.:/%").find(aCharacter) != std::string_view::npos;
}

void CheckIdentity(const TtyIdentity& aIdentity) {
  Require(aIdentity.text.starts_with("usb ") || aIdentity.text.starts_with("path "));
  Require(std::ranges::all_of(
      aIdentity.text, [](char aCharacter) { return IsPlain(aCharacter) || aCharacter == ' ' || aCharacter == '@'; }));
  const std::string& place = aIdentity.place;
  Require(place.empty() || (place.front() == '@' && std::all_of(place.begin() + 1, place.end(), IsPlain)));
  // Where something else tells two devices apart, the place is not needed to.
  Require(place.empty() || aIdentity.text.find(' ' + place + ' ') == std::string::npos);
}

// The place of a name among others: its kind, and its number.
std::pair<std::size_t, std::uint32_t> GetOrder(std::string_view aName) {
  for (std::size_t kind = 0; kind < std::size(kPrefixes); ++kind) {
    std::uint32_t number = 0;
    const std::string_view digits = aName.starts_with(kPrefixes[kind]) ? aName.substr(kPrefixes[kind].size()) : "";
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc() && end == digits.data() + digits.size())
      return {kind, number};
  }
  Require(false); // It is no name of a tty's.
  return {};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize > kMostBytes)
    return 0;
  const FolderTree tree({reinterpret_cast<const char*>(aData), aSize});
  const std::filesystem::path devices = tree.GetRoot() / "dev";
  const std::string sysfs = (tree.GetRoot() / "sys").string();
  std::vector<SystemTty> ttys;
  if (!RequireReason(FindSystemTtys(sysfs, devices.string(), ttys)))
    return 0;
  std::pair<std::size_t, std::uint32_t> last{};
  for (const SystemTty& tty : ttys) {
    const std::filesystem::path path(tty.path);
    Require(path.parent_path() == devices && std::filesystem::exists(path));
    const std::string name = path.filename().string();
    const auto order = GetOrder(name);
    Require(last <= order && tty.text.ends_with(' ' + name));
    last = order;
    CheckIdentity(tty.identity);
  }
  std::vector<SystemTty> again;
  Require(RequireReason(FindSystemTtys(sysfs, devices.string(), again)) && again.size() == ttys.size());
  return 0;
}
