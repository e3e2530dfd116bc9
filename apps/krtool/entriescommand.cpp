#include "entriescommand.h"

#include "camerasession.h"
#include "featurelookup.h"
#include "featuresource.h"
#include "featurewords.h"
#include "krgenicam/krgenenum.h"
#include "plaintext.h"

#include <cstddef>
#include <cstdint>

namespace krtool {

namespace {

constexpr const char* kHeadings = "entry\tvalue\taccess\tdisplay name\ttooltip\n";

KrResult WriteEntry(KrGenEnumEntry& aEntry, std::ostream& aOut) {
  std::int64_t value = 0;
  KrString displayName;
  KrString toolTip;
  KrResult read = aEntry.GetValue(value);
  if (read.IsOK())
    read = aEntry.GetDisplayName(displayName);
  if (read.IsOK())
    read = aEntry.GetToolTip(toolTip);
  if (!read.IsOK())
    return read;
  aOut << krapps::MakeField(aEntry.GetName()) << '\t' << value << '\t' << GetAccessWord(aEntry.GetAccessMode()) << '\t'
       << krapps::MakeField(displayName) << '\t' << krapps::MakeField(toolTip) << '\n';
  return read;
}

KrResult WriteEntries(const KrGenParameterArray& aArray, const std::string& aName, std::ostream& aOut) {
  KrGenParameter* feature = nullptr;
  if (KrResult found = FindFeature(aArray, aName, feature); !found.IsOK())
    return found;
  const auto* const enumeration = dynamic_cast<const KrGenEnum*>(feature);
  if (enumeration == nullptr)
    return {KrResult::Code::InvalidInput,
            "it is no enumeration, but of the type " + std::string(GetTypeWord(feature->GetType())) + "."};
  aOut << kHeadings;
  const std::size_t count = enumeration->GetEntriesCount();
  for (std::size_t i = 0; i < count; ++i) {
    KrGenEnumEntry* entry = nullptr;
    KrResult written = enumeration->GetEntryByIndex(i, entry);
    if (written.IsOK())
      written = WriteEntry(*entry, aOut);
    if (!written.IsOK())
      return written;
  }
  return {};
}

} // namespace

int ListEntries(const KrGenParameterArray& aArray, const std::string& aDevice,
                const std::function<KrResult()>& aGetLoss, const std::string& aName, std::ostream& aOut,
                std::ostream& aErrors) {
  const KrResult written = WriteEntries(aArray, aName, aOut);
  if (written.IsOK())
    return FailForLoss(aErrors, aDevice, aGetLoss());
  return Fail(aErrors, Explain("listing the entries of " + aName + " of " + aDevice + " failed", written));
}

int RunEntries(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  FeatureSource source;
  if (KrResult opened = source.OpenToRead(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);
  return ListEntries(
      source.GetArray(), source.GetName(), [&source] { return source.GetLoss(); }, aCommandLine.names.front(), aOut,
      aErrors);
}

} // namespace krtool
