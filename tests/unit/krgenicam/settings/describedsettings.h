#pragma once
// Nodes that the tests of settings share, and the camera's operations on settings with what they gave.

#include "describedcamera.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace krgenicam {

/// A streamable integer of four bytes at an address, with a range of its own.
inline std::string MakeInteger(const std::string& aName, int aAddress, const std::string& aExtra = "") {
  const std::string address = std::to_string(aAddress);
  return "<Integer Name=\"" + aName + "\"><Streamable>Yes</Streamable><pValue>" + aName + "Reg</pValue>" + aExtra +
         "</Integer><IntReg Name=\"" + aName + "Reg\"><Address>" + address +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Signed</Sign>"
         "<Endianess>LittleEndian</Endianess></IntReg>";
}

/// An enumeration of values 0, 1 … over four bytes at an address.
inline std::string MakeEnum(const std::string& aName, int aAddress, const std::vector<std::string>& aEntries,
                            const std::string& aExtra = "") {
  std::string text = "<Enumeration Name=\"" + aName + "\"><Streamable>Yes</Streamable>";
  for (std::size_t i = 0; i < aEntries.size(); ++i)
    text += "<EnumEntry Name=\"" + aEntries[i] + "\"><Value>" + std::to_string(i) + "</Value></EnumEntry>";
  return text + "<pValue>" + aName + "Reg</pValue>" + aExtra + "</Enumeration><IntReg Name=\"" + aName +
         "Reg\"><Address>" + std::to_string(aAddress) +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
         "<Endianess>LittleEndian</Endianess></IntReg>";
}

/// A streamable integer with a register of four bytes for each position of a selector, one behind the other.
inline std::string MakeBank(const std::string& aName, int aAddress, const std::string& aSelector) {
  return "<Integer Name=\"" + aName + "\"><Streamable>Yes</Streamable><pValue>" + aName +
         "Reg</pValue></Integer><IntReg Name=\"" + aName + "Reg\"><Address>" + std::to_string(aAddress) +
         "</Address><pIndex Offset=\"4\">" + aSelector +
         "</pIndex><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Signed</Sign>"
         "<Endianess>LittleEndian</Endianess></IntReg>";
}

using Steps = std::vector<std::pair<std::string, std::string>>;

/// A described camera with its settings.
class SettingsCamera : public DescribedCamera {
public:
  using DescribedCamera::DescribedCamera;

  KrResult Store() { return array->StoreSettings(settings, problems); }
  KrResult Restore(const Steps& aSteps) {
    settings.Clear();
    for (const auto& [name, value] : aSteps)
      settings.Add(name, value);
    return array->RestoreSettings(settings, problems);
  }

  Steps GetSteps() const {
    Steps steps;
    for (const KrGenSetting& setting : settings.GetSettings())
      steps.emplace_back(setting.name.ToUtf8(), setting.value.ToUtf8());
    return steps;
  }
  std::vector<std::string> GetProblems() const {
    std::vector<std::string> texts;
    for (const KrString& problem : problems)
      texts.push_back(problem.ToUtf8());
    return texts;
  }
  std::string GetText(const char* aName) {
    KrString text;
    const KrResult read = array->Get(aName)->ToString(text);
    return read.IsOK() ? text.ToUtf8() : "failed: " + read.GetDescription().ToUtf8();
  }
  void SetText(const char* aName, const char* aText) {
    const KrResult set = array->Get(aName)->FromString(aText);
    ASSERT_TRUE(set.IsOK()) << set.GetDescription().CStr();
  }

  KrGenSettings settings;
  KrStringList problems;
};

/// Lets accesses to one address fail.
inline RecordingPort::Fault FailAt(std::uint64_t aAddress, bool aIsWrite, KrResult::Code aCode) {
  return [=](const RegisterAccessRecord& aRecord) {
    const bool isMeant = aRecord.address == aAddress && aRecord.isWrite == aIsWrite;
    return isMeant ? KrResult(aCode, "The register is broken.") : KrResult();
  };
}

} // namespace krgenicam
