#include "serialmaplist.h"

#include "configurationdirectory.h"
#include "krbase/krlogger.h"
#include "serialfeaturestext.h"
#include "serialmapreader.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace krserial {

namespace {

constexpr std::size_t kMostUserFiles = 64;

// The names of the user's files, in order.
std::vector<std::string> ListUserFiles() {
  std::vector<std::string> files;
  std::error_code error;
  const std::filesystem::path directory = SerialMapList::GetUserDirectory().ToUtf8();
  for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error))
    if (entry->path().extension() == ".yaml")
      files.push_back(entry->path().string());
  std::ranges::sort(files);
  return files;
}

void Append(SerialMaps& aMaps, const SerialMaps& aMore) {
  aMaps.insert(aMaps.end(), aMore.begin(), aMore.end());
}

// Each line of a result by itself: a logger shows the end of a line as a character.
void LogLines(const KrResult& aResult) {
  std::string_view rest = aResult.GetDescription().ToUtf8();
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    KrLogger("KrSerial")
        .Log(KrLogLevel::Warning, {"AppendUserMaps", "serialmaplist"}, std::string(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

void AppendUserMaps(SerialMaps& aMaps) {
  std::vector<std::string> files = ListUserFiles();
  if (files.size() > kMostUserFiles) {
    LogLines({KrResult::Code::OutOfRange, SerialMapList::GetUserDirectory() + " has " + std::to_string(files.size()) +
                                              " files of maps; the first " + std::to_string(kMostUserFiles) +
                                              " in the order of their names are read."});
    files.resize(kMostUserFiles);
  }
  for (const std::string& file : files) {
    SerialMaps maps;
    if (const KrResult read = ReadSerialMaps(file, maps); !read.IsOK())
      LogLines(read);
    Append(aMaps, maps);
  }
}

} // namespace

SerialMapList& SerialMapList::Get() {
  // Never destroyed: threads may still ask while the process ends.
  static SerialMapList& list = *new SerialMapList;
  return list;
}

KrResult SerialMapList::AddFile(const KrString& aFile) {
  SerialMaps maps;
  if (KrResult read = ReadSerialMaps(aFile, maps); !read.IsOK())
    return read;
  const std::lock_guard lock(mMutex);
  mAdded.insert(mAdded.begin(), maps.begin(), maps.end());
  return {};
}

void SerialMapList::RemoveAdded() {
  const std::lock_guard lock(mMutex);
  mAdded.clear();
}

SerialMaps SerialMapList::GetAll() const {
  SerialMaps all;
  {
    const std::lock_guard lock(mMutex);
    all = mAdded;
  }
  AppendUserMaps(all);
  SerialMaps own;
  if (const KrResult read = ParseSerialMaps(kSerialFeaturesText, "serialfeatures.yaml", own); !read.IsOK())
    KrLogger("KrSerial").Log(KrLogLevel::Error, {"SerialMapList::GetAll", "serialmaplist"}, read.GetDescription());
  Append(all, own);
  return all;
}

KrString SerialMapList::GetUserDirectory() {
  const std::filesystem::path directory = GetConfigurationDirectory();
  return directory.empty() ? std::string() : (directory / "krgui" / "serial-features.d").string();
}

} // namespace krserial
