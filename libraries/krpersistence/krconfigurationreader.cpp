#include "krpersistence/krconfigurationreader.h"

#include "configurationparser.h"
#include "krbase/krwholefile.h"
#include "krpersistence/krconfigurationwriter.h"

#include <string>

KrConfigurationReader::KrConfigurationReader(const KrConfigurationWriter& aWriter) : mLists(aWriter.mLists) {}

KrResult KrConfigurationReader::Load(const KrString& aFileName) {
  const KrString file = "The configuration file \"" + aFileName + "\"";
  try {
    std::string bytes;
    if (KrResult read = KrReadWholeFile(aFileName, krpersistence::kMostFileBytes, bytes); !read.IsOK())
      return {read.GetCode(), file + " cannot be read: " + read.GetDescription()};
    KrResult parsed = krpersistence::ParseConfiguration(bytes, mLists);
    if (parsed == KrResult::Code::BadData)
      return {parsed.GetCode(), file + " is damaged: " + parsed.GetDescription()};
    return parsed.IsOK() ? parsed : KrResult(parsed.GetCode(), file + " cannot be read: " + parsed.GetDescription());
  } catch (const std::exception& exception) {
    return {KrResult::Code::SystemError, file + " cannot be read: " + exception.what() + "."};
  }
}

KrResult KrConfigurationReader::Restore(const KrString& aName, KrPropertyList& aProperties) const {
  const auto found = krpersistence::FindList(mLists, aName);
  if (found == mLists.end())
    return {KrResult::Code::NotFound, "The configuration has no list \"" + aName + "\"."};
  aProperties = found->second;
  return {};
}

bool KrConfigurationReader::Contains(const KrString& aName) const {
  return krpersistence::FindList(mLists, aName) != mLists.end();
}

KrStringList KrConfigurationReader::GetNames() const {
  KrStringList names;
  for (const auto& list : mLists)
    names.Add(list.first);
  return names;
}
