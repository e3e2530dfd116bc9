#include "krgenicam/krgensettings.h"

#include "krbase/kratomicfile.h"
#include "krbase/krwholefile.h"
#include "krbase/trim.h"
#include "map/settingsescape.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr std::string_view kMagic = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";
constexpr std::string_view kVersionLine = "# GenApi persistence file (version 1.0.0)";
constexpr std::string_view kDeviceMark = "Device = ";
// Stands before a line whose value is escaped; for readers that know no escapes it is a comment.
constexpr std::string_view kEscapeMark = "escaped";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\v\f";
constexpr std::size_t kMaxBytes = std::size_t{16} << 20;
constexpr std::size_t kMaxSettings = 1'000'000;

std::string_view TrimEnd(std::string_view aText) {
  return aText.substr(0, aText.find_last_not_of(kBlanks) + 1);
}

// What "#" makes a comment of, without blanks around.
std::string_view GetComment(std::string_view aLine) {
  return krbase::Trim(aLine.substr(1));
}

bool HasMagic(std::string_view aLine) {
  const auto isEqual = [](char aLeft, char aRight) {
    return std::tolower(static_cast<unsigned char>(aLeft)) == std::tolower(static_cast<unsigned char>(aRight));
  };
  return aLine.starts_with('#') &&
         std::search(aLine.begin(), aLine.end(), kMagic.begin(), kMagic.end(), isEqual) != aLine.end();
}

// The device's name in one line.
std::string MakeDeviceText(const KrString& aDevice) {
  std::string text = aDevice.ToUtf8();
  std::replace_if(
      text.begin(), text.end(), [](char aByte) { return krgenicam::IsControl(aByte); }, ' ');
  return std::string(krbase::Trim(text));
}

// Gives one line after the other; lines end with "\n", "\r\n" or a lone "\r".
class Lines {
public:
  explicit Lines(std::string_view aText) : mRest(aText) {}

  bool Take(std::string_view& aLine) {
    if (mRest.empty())
      return false;
    const std::size_t end = std::min(mRest.find_first_of("\r\n"), mRest.size());
    aLine = mRest.substr(0, end);
    mRest.remove_prefix(end);
    if (!mRest.empty())
      mRest.remove_prefix(mRest.starts_with("\r\n") ? 2 : 1);
    ++mNumber;
    return true;
  }
  std::size_t GetNumber() const { return mNumber; }

private:
  std::string_view mRest;
  std::size_t mNumber = 0;
};

std::string MakeTooLong() {
  return "The settings are longer than the limit of " + std::to_string(kMaxBytes) + " bytes.";
}

// Takes the lines behind the first one.
class SettingsReader {
public:
  SettingsReader(std::vector<KrGenSetting>& aSettings, KrString& aDevice) : mSettings(aSettings), mDevice(aDevice) {}

  KrResult Take(std::string_view aLine, std::size_t aNumber) {
    if (aLine.starts_with('#'))
      TakeComment(GetComment(aLine));
    else if (!krbase::Trim(aLine).empty())
      return TakeSetting(aLine, aNumber);
    return {};
  }

private:
  void TakeComment(std::string_view aComment) {
    mIsEscaped = aComment == kEscapeMark;
    if (mSettings.empty() && mDevice.IsEmpty() && aComment.starts_with(kDeviceMark))
      mDevice = KrString(krbase::Trim(aComment.substr(kDeviceMark.size())));
  }

  KrResult TakeSetting(std::string_view aLine, std::size_t aNumber) {
    const std::size_t tab = std::min(aLine.find('\t'), aLine.size());
    const std::string_view name = krbase::Trim(aLine.substr(0, tab));
    if (!krgenicam::IsSettingName(name))
      return MakeError(aNumber, "a parameter's name, a tab and its value are wanted.");
    if (mSettings.size() == kMaxSettings)
      return MakeError(aNumber, "there are more than " + std::to_string(kMaxSettings) + " settings.");
    std::string value(TrimEnd(aLine.substr(std::min(tab + 1, aLine.size()))));
    if (value.find('\0') != std::string::npos)
      return MakeError(aNumber, "the value of " + std::string(name) + " holds a zero byte.");
    if (mIsEscaped && !krgenicam::UnescapeSetting(value))
      return MakeError(aNumber, "the value of " + std::string(name) + " holds a backslash that begins no escape.");
    mIsEscaped = false;
    mSettings.push_back({KrString(name), KrString(std::move(value))});
    return {};
  }

  static KrResult MakeError(std::size_t aNumber, const std::string& aReason) {
    return {KrResult::Code::BadData, "Line " + std::to_string(aNumber) + " of the settings: " + aReason};
  }

  std::vector<KrGenSetting>& mSettings;
  KrString& mDevice;
  bool mIsEscaped = false;
};

} // namespace

void KrGenSettings::Add(const KrString& aName, const KrString& aValue) {
  mSettings.push_back({aName, aValue});
}

std::string KrGenSettings::ToText() const {
  std::string text = "# " + std::string(kMagic) + "\n" + std::string(kVersionLine) + "\n# " + std::string(kDeviceMark) +
                     MakeDeviceText(mDevice) + "\n";
  for (const KrGenSetting& setting : mSettings) {
    const std::string& value = setting.value.ToUtf8();
    if (!krgenicam::IsSettingName(setting.name.ToUtf8()))
      text += "# Left out: a parameter whose name no line can hold.\n";
    else if (krgenicam::NeedsEscape(value))
      text += "# " + std::string(kEscapeMark) + "\n" + setting.name.ToUtf8() + "\t" + krgenicam::EscapeSetting(value) +
              "\n";
    else
      text += setting.name.ToUtf8() + "\t" + value + "\n";
  }
  return text;
}

KrResult KrGenSettings::FromText(std::string_view aText) {
  if (aText.size() > kMaxBytes)
    return {KrResult::Code::BadData, MakeTooLong()};
  if (aText.starts_with(kByteOrderMark))
    aText.remove_prefix(kByteOrderMark.size());
  Lines lines(aText);
  std::string_view line;
  if (!lines.Take(line) || !HasMagic(line))
    return {KrResult::Code::BadData,
            "Line 1 of the settings: this is no file of a device's settings, which begins with # " +
                std::string(kMagic) + "."};
  std::vector<KrGenSetting> settings;
  KrString device;
  SettingsReader reader(settings, device);
  while (lines.Take(line)) {
    if (KrResult taken = reader.Take(line, lines.GetNumber()); !taken.IsOK())
      return taken;
  }
  mSettings = std::move(settings);
  mDevice = device;
  return {};
}

KrResult KrGenSettings::Save(const KrString& aFileName) const {
  const std::string text = ToText();
  if (text.size() > kMaxBytes) // Nobody would read it again.
    return {KrResult::Code::OutOfRange, MakeTooLong()};
  KrAtomicFile file;
  KrResult result = file.Open(aFileName, KrAtomicFile::Existing::Replaced);
  if (result.IsOK())
    result = file.Write(text.data(), text.size());
  return result.IsOK() ? file.Commit() : result;
}

KrResult KrGenSettings::Load(const KrString& aFileName) {
  std::string text;
  KrResult result = KrReadWholeFile(aFileName, kMaxBytes, text);
  if (result.IsOK())
    result = FromText(text);
  if (result.IsOK())
    return result;
  return {result.GetCode(), "Reading settings from \"" + aFileName + "\" failed: " + result.GetDescription()};
}
