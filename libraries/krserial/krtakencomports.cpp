#include "krserial/krtakencomports.h"

#include "comname.h"
#include "krserial/krhostserialports.h"
#include "portnumbers.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace {

namespace fs = std::filesystem;

KrResult AddNames(const fs::path& aFolder, std::set<std::uint32_t>& aNumbers) {
  std::error_code error;
  for (fs::directory_iterator entry(aFolder, error), end; !error && entry != end; entry.increment(error))
    if (const std::optional<std::uint32_t> number = krserial::ParseComName(entry->path().filename().native()))
      aNumbers.insert(*number);
  if (error && error != std::errc::no_such_file_or_directory)
    return {KrResult::Code::SystemError, "Reading the folder " + aFolder.string() + ": " + error.message() + "."};
  return {};
}

} // namespace

KrResult KrTakenCOMPorts::GetNumbers(std::set<std::uint32_t>& aNumbers) {
  const KrHostSerialFolders folders = KrHostSerialPorts::GetFolders();
  std::set<std::uint32_t> taken;
  if (KrResult names = AddNames(folders.links.ToUtf8(), taken); !names.IsOK())
    return names;
  krserial::PortNumbers given;
  if (KrResult read = krserial::ReadPortNumbers(folders.numbers.ToUtf8(), given); !read.IsOK())
    return read;
  for (const auto& [identity, number] : given)
    taken.insert(number);
  aNumbers = std::move(taken);
  return {};
}
