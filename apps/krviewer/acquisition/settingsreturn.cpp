#include "acquisition/settingsreturn.h"

#include "krbase/utf8cut.h"
#include "krgenicam/krgenaccessstop.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace krviewer {

namespace {

// The camera is not there to be asked, or is not to be asked any more. One register without an answer is no reason.
bool IsEnd(const KrResult& aResult) {
  return aResult == KrResult::Code::ConnectionLost || aResult == KrResult::Code::Aborted;
}

// Their own values are where the selectors end, when all else is done.
bool SelectsOther(const KeptSetting& aSelector, const std::vector<KeptSetting>& aSettings) {
  return std::ranges::any_of(aSettings, [&](const KeptSetting& aSetting) {
    return std::ranges::any_of(aSetting.positions,
                               [&](const KrGenSetting& aPosition) { return aPosition.name == aSelector.name; });
  });
}

// As much of a text as a message about thousands of settings has room for.
KrString Shorten(const KrString& aText) {
  constexpr std::size_t kMostBytes = 120;
  const std::string_view text = aText.ToUtf8();
  return text.size() <= kMostBytes ? aText : KrString(std::string(krbase::CutUtf8(text, kMostBytes)) + "…");
}

} // namespace

KrResult SettingsReturn::Run(const std::vector<KeptSetting>& aSettings, const std::stop_token& aStop,
                             SettingsReturned& aReturned) {
  const KrGenAccessStop end(aStop);
  KrResult result = FindDifferent(aSettings);
  if (result.IsOK())
    result = Write(aStop);
  if (result.IsOK())
    result = Verify(aReturned);
  PutSelectors(aSettings);
  if (result.IsOK() && mIsSlow)
    return {KrResult::Code::TimeLimitExceeded, "Setting the camera as it was: it did not always answer in time."};
  return result;
}

KrResult SettingsReturn::FindDifferent(const std::vector<KeptSetting>& aSettings) {
  for (const KeptSetting& setting : aSettings) {
    if (SelectsOther(setting, aSettings))
      continue;
    bool isSame = false;
    KrString found;
    const KrResult compared = Compare(setting, isSame, found);
    if (IsEnd(compared))
      return compared;
    if (!compared.IsOK() || !isSame)
      mDifferent.push_back(setting);
  }
  return {};
}

KrResult SettingsReturn::Compare(const KeptSetting& aSetting, bool& aIsSame, KrString& aFound) {
  KrResult compared = Read(aSetting, aFound);
  aIsSame = compared.IsOK() && aFound == aSetting.value;
  mIsSlow = mIsSlow || compared == KrResult::Code::TimeLimitExceeded;
  return compared;
}

KrResult SettingsReturn::Read(const KeptSetting& aSetting, KrString& aFound) {
  KrGenParameter* const parameter = mParameters.Get(aSetting.name);
  if (!parameter)
    return {KrResult::Code::NotFound, "the camera does not have it any more."};
  if (KrResult moved = MoveSelectors(aSetting.positions); !moved.IsOK())
    return moved;
  return parameter->ToString(aFound);
}

KrResult SettingsReturn::MoveSelectors(const std::vector<KrGenSetting>& aPositions) {
  for (const KrGenSetting& position : aPositions) {
    KrGenParameter* const selector = mParameters.Get(position.name);
    if (!selector)
      return {KrResult::Code::NotFound, "the camera does not have " + position.name + " any more."};
    KrString present;
    if (KrResult read = selector->ToString(present); !read.IsOK())
      return read;
    if (present == position.value)
      continue;
    const bool isMovedFirst =
        std::ranges::none_of(mMoved, [&](const KrGenSetting& aMoved) { return aMoved.name == position.name; });
    if (isMovedFirst)
      mMoved.push_back({position.name, present});
    if (KrResult moved = selector->FromString(position.value); !moved.IsOK())
      return moved;
  }
  return {};
}

// What cannot be set shows when all is compared again.
KrResult SettingsReturn::Write(const std::stop_token& aStop) {
  KrGenSettings settings;
  for (const KeptSetting& setting : mDifferent) {
    for (const KrGenSetting& position : setting.positions)
      settings.Add(position.name, position.value);
    settings.Add(setting.name, setting.value);
  }
  if (settings.GetCount() == 0)
    return {};
  KrStringList problems;
  const KrResult restored = mParameters.RestoreSettings(
      settings, problems, [&aStop](std::size_t, std::size_t) { return !aStop.stop_requested(); });
  return IsEnd(restored) ? restored : KrResult();
}

KrResult SettingsReturn::Verify(SettingsReturned& aReturned) {
  aReturned.different.Clear();
  for (const KeptSetting& setting : mDifferent) {
    bool isSame = false;
    KrString found;
    const KrResult compared = Compare(setting, isSame, found);
    if (IsEnd(compared))
      return compared;
    if (isSame)
      ++aReturned.set;
    else if (!IsRuledByAnother(setting))
      aReturned.different.Add(Shorten(DescribePlace(setting)) + " was " + Shorten(setting.value) +
                              (compared.IsOK() ? " and is " + Shorten(found) + "." : ": " + compared.GetDescription()));
  }
  return {};
}

// What another setting has locked, or taken away, is as that one wants it: an exposure time that the camera finds by
// itself, for example. The selectors stand where the setting is.
bool SettingsReturn::IsRuledByAnother(const KeptSetting& aSetting) {
  KrGenParameter* const parameter = mParameters.Get(aSetting.name);
  bool isWritable = true;
  KrString reason;
  return parameter && parameter->IsWritable(isWritable).IsOK() && !isWritable &&
         parameter->GetAccessReason(reason).IsOK() && !reason.IsEmpty();
}

// A selector stands where it stood before the loss or, where that is not known, where it was found. One that cannot be
// moved there costs nothing that was set.
void SettingsReturn::PutSelectors(const std::vector<KeptSetting>& aSettings) {
  for (const KrGenSetting& moved : mMoved)
    if (KrGenParameter* const selector = mParameters.Get(moved.name))
      (void)selector->FromString(moved.value);
  for (const KeptSetting& setting : aSettings) {
    bool isSame = false;
    KrString found;
    if (SelectsOther(setting, aSettings) && Compare(setting, isSame, found).IsOK() && !isSame)
      (void)mParameters.Get(setting.name)->FromString(setting.value);
  }
}

} // namespace krviewer
