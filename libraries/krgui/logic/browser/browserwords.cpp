#include "logic/browser/browserwords.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace krgui {

namespace {

constexpr const char* kUnexpected = "Unexpected";
constexpr std::array kTypeWords = {"Integer", "Enumeration", "Boolean", "String", "Command", "Float", "Register"};
constexpr std::array kVisibilityWords = {"Beginner", "Expert", "Guru", "Invisible"};
constexpr std::array kNameSpaceWords = {"Standard", "Custom"};

constexpr std::array<std::string_view, 15> kIPAddressNames = {
    "IPAddress",
    "LocalIPAddress",
    "DeviceIPAddress",
    "GevCurrentIPAddress",
    "GevCurrentSubnetMask",
    "GevCurrentDefaultGateway",
    "GevPersistentIPAddress",
    "GevPersistentSubnetMask",
    "GevPersistentDefaultGateway",
    "GevMCDA",
    "GevSCDA",
    "MulticastIPAddress",
    "SourceIPAddress",
    "SourceSCDA",
    "GevPrimaryApplicationIPAddress",
};

// The word at an enumerator's number; a library of another version may give numbers that have none.
template <typename Words, typename Enumerator>
const char* FindWord(const Words& aWords, Enumerator aEnumerator) {
  const auto number = static_cast<std::size_t>(aEnumerator);
  return number < aWords.size() ? aWords[number] : kUnexpected;
}

} // namespace

const char* TypeToText(KrGenType aType) {
  return FindWord(kTypeWords, aType);
}

const char* VisibilityToText(KrGenVisibility aVisibility) {
  return FindWord(kVisibilityWords, aVisibility);
}

const char* NameSpaceToText(KrGenNameSpace aNameSpace) {
  return FindWord(kNameSpaceWords, aNameSpace);
}

bool IsIPAddressName(const KrString& aName) {
  return std::find(kIPAddressNames.begin(), kIPAddressNames.end(), aName.ToUtf8()) != kIPAddressNames.end();
}

bool IsMACAddressName(const KrString& aName) {
  return aName.ToUtf8() == "GevMACAddress";
}

} // namespace krgui
