#include "rules.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace archcheck {

namespace {

constexpr Room kRooms[] = {
    {"krbase", "Base", ""},
    {"krpersistence", "Persistence", "krbase"},
    {"krbuffer", "Buffer", "krbase"},
    {"krgenicam", "GenICam", "krbase krpersistence"},
    {"krsystem", "System", "krbase krbuffer krgenicam"},
    {"krdevice", "Device", "krbase krpersistence krbuffer krgenicam krsystem"},
    {"krclserial", "CLSerial", "krbase"},
    {"krserial", "Serial", "krbase krpersistence krbuffer krgenicam krsystem krdevice"},
    {"krcamerabridge", "CameraBridge", "krbase krpersistence krbuffer krgenicam krsystem krdevice krserial"},
    {"krtransport", "Transport", "krbase krpersistence krbuffer krgenicam krsystem krdevice"},
    {"krgui/logic", "GUILogic", "krbase krpersistence krbuffer krsystem krgenicam krserial"},
    {"krgui", "GUI",
     "krbase krpersistence krbuffer krgenicam krsystem krdevice krclserial krserial krcamerabridge krgui/logic"},
};

// Targets whose name is not their room's.
constexpr struct {
  std::string_view target;
  std::string_view room;
} kTargets[] = {{"krguilogic", "krgui/logic"}};

// The longest prefix of a file's path decides whether it may see the toolkit; what is not listed may not.
constexpr struct {
  std::string_view prefix;
  bool allowed;
} kToolkitPlaces[] = {
    {"libraries/krgui/", true},
    {"libraries/krgui/logic/", false},
    {"apps/", true},
    {"apps/common/", false},
    {"apps/krtool/", false},
    {"examples/", true},
    {"benchmarks/browser/", true},
    {"benchmarks/display/", true},
    {"benchmarks/finder/", true},
    {"benchmarks/terminal/", true},
    {"benchmarks/windows/", true},
    {"benchmarks/heartbeat.h", true},
    {"fuzz/viewer/", true},
    {"tests/", true},
};

// Public headers of the windows that hold plain values of the rules.
constexpr std::string_view kValueHeaders[] = {"libraries/krgui/include/krgui/krdisplaymapping.h",
                                              "libraries/krgui/include/krgui/krdisplaystatistics.h",
                                              "libraries/krgui/include/krgui/krgenrefresh.h"};

constexpr std::string_view kStandardHeaders[] = {
    "algorithm",
    "any",
    "array",
    "atomic",
    "barrier",
    "bit",
    "bitset",
    "cassert",
    "cctype",
    "cerrno",
    "cfenv",
    "cfloat",
    "charconv",
    "chrono",
    "cinttypes",
    "climits",
    "clocale",
    "cmath",
    "codecvt",
    "compare",
    "complex",
    "concepts",
    "condition_variable",
    "coroutine",
    "csetjmp",
    "csignal",
    "cstdarg",
    "cstddef",
    "cstdint",
    "cstdio",
    "cstdlib",
    "cstring",
    "ctime",
    "cuchar",
    "cwchar",
    "cwctype",
    "deque",
    "exception",
    "execution",
    "filesystem",
    "format",
    "forward_list",
    "fstream",
    "functional",
    "future",
    "initializer_list",
    "iomanip",
    "ios",
    "iosfwd",
    "iostream",
    "istream",
    "iterator",
    "latch",
    "limits",
    "list",
    "locale",
    "map",
    "memory",
    "memory_resource",
    "mutex",
    "new",
    "numbers",
    "numeric",
    "optional",
    "ostream",
    "queue",
    "random",
    "ranges",
    "ratio",
    "regex",
    "scoped_allocator",
    "semaphore",
    "set",
    "shared_mutex",
    "source_location",
    "span",
    "sstream",
    "stack",
    "stdexcept",
    "stop_token",
    "streambuf",
    "string",
    "string_view",
    "strstream",
    "syncstream",
    "system_error",
    "thread",
    "tuple",
    "type_traits",
    "typeindex",
    "typeinfo",
    "unordered_map",
    "unordered_set",
    "utility",
    "valarray",
    "variant",
    "vector",
    "version",
};

bool IsUpper(char aCharacter) {
  return std::isupper(static_cast<unsigned char>(aCharacter)) != 0;
}

bool HasWord(std::string_view aWords, std::string_view aWord) {
  while (!aWords.empty()) {
    const std::size_t end = std::min(aWords.find(' '), aWords.size());
    if (aWords.substr(0, end) == aWord)
      return true;
    aWords.remove_prefix(std::min(end + 1, aWords.size()));
  }
  return false;
}

} // namespace

const Room* FindRoom(std::string_view aName) {
  const auto* found =
      std::find_if(std::begin(kRooms), std::end(kRooms), [&](const Room& aRoom) { return aRoom.name == aName; });
  return found == std::end(kRooms) ? nullptr : found;
}

const Room* FindRoomOfTarget(std::string_view aTarget) {
  constexpr std::string_view kNamespace = "Kr::";
  for (const auto& row : kTargets)
    if (row.target == aTarget)
      return FindRoom(row.room);
  if (!aTarget.starts_with(kNamespace))
    return FindRoom(aTarget);
  const std::string_view alias = aTarget.substr(kNamespace.size());
  const auto* found =
      std::find_if(std::begin(kRooms), std::end(kRooms), [&](const Room& aRoom) { return aRoom.alias == alias; });
  return found == std::end(kRooms) ? nullptr : found;
}

bool IsValueHeader(std::string_view aFile) {
  return std::find(std::begin(kValueHeaders), std::end(kValueHeaders), aFile) != std::end(kValueHeaders);
}

bool MayInclude(const Room& aRoom, std::string_view aOther) {
  return aRoom.name == aOther || HasWord(aRoom.mayInclude, aOther);
}

bool IsToolkitHeader(std::string_view aInclude) {
  const std::size_t slash = aInclude.rfind('/');
  if (slash != std::string_view::npos)
    return aInclude.starts_with("Qt") || IsToolkitHeader(aInclude.substr(slash + 1));
  if (aInclude.starts_with("Qt") || (aInclude.size() > 1 && aInclude[0] == 'Q' && IsUpper(aInclude[1])))
    return true;
  return aInclude.starts_with('q') && aInclude.ends_with(".h");
}

bool IsToolkitTarget(std::string_view aTarget) {
  return aTarget.starts_with("Qt") && aTarget.find("::") != aTarget.npos;
}

bool MaySeeToolkit(std::string_view aFile) {
  std::size_t length = 0;
  bool allowed = false;
  for (const auto& place : kToolkitPlaces)
    if (aFile.starts_with(place.prefix) && place.prefix.size() > length) {
      length = place.prefix.size();
      allowed = place.allowed;
    }
  return allowed;
}

bool IsStandardHeader(std::string_view aInclude) {
  return std::find(std::begin(kStandardHeaders), std::end(kStandardHeaders), aInclude) != std::end(kStandardHeaders);
}

bool IsPublicToolkitHeader(std::string_view aRoom, std::string_view aInclude) {
  // Windows take native handles; controls for an application's own layout are widgets.
  return aRoom == "krgui" && (aInclude == "qwindowdefs.h" || aInclude == "QWidget");
}

bool IsLowerCaseName(std::string_view aFileName) {
  return std::all_of(aFileName.begin(), aFileName.end(), [](char aCharacter) {
    return (aCharacter >= 'a' && aCharacter <= 'z') || (aCharacter >= '0' && aCharacter <= '9') || aCharacter == '_' ||
           aCharacter == '.';
  });
}

} // namespace archcheck
