#include "krpersistence/krconfigurationwriter.h"

#include "configurationtext.h"
#include "krbase/kratomicfile.h"

#include <string>

KrResult KrConfigurationWriter::Store(const KrString& aName, const KrPropertyList& aProperties) {
  if (aName.IsEmpty())
    return {KrResult::Code::InvalidInput, "A property list cannot be stored without a name."};
  try {
    const auto found = krpersistence::FindList(mLists, aName);
    if (found != mLists.end())
      found->second = aProperties;
    else
      mLists.emplace_back(aName, aProperties);
    return {};
  } catch (const std::exception& exception) {
    return {KrResult::Code::SystemError, "The list \"" + aName + "\" cannot be stored: " + exception.what() + "."};
  }
}

KrResult KrConfigurationWriter::Save(const KrString& aFileName) const {
  const KrString failed = "The configuration file \"" + aFileName + "\" cannot be written: ";
  try {
    std::string text;
    if (KrResult written = krpersistence::WriteConfigurationText(mLists, text); !written.IsOK())
      return {written.GetCode(), failed + written.GetDescription()};
    KrAtomicFile file;
    if (KrResult opened = file.Open(aFileName, KrAtomicFile::Existing::Replaced); !opened.IsOK())
      return opened;
    if (KrResult written = file.Write(text.data(), text.size()); !written.IsOK())
      return written;
    return file.Commit();
  } catch (const std::exception& exception) {
    return {KrResult::Code::SystemError, failed + exception.what() + "."};
  }
}
