#include "portnumbers.h"

#include "comname.h"
#include "krbase/filedescriptor.h"
#include "krbase/kratomicfile.h"
#include "krbase/krlogger.h"
#include "krbase/krwholefile.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

namespace krserial {

namespace {

constexpr std::string_view kHeader = "krgui serial port numbers 1\n";

void Warn(const std::string& aText) {
  KrLogger("KrSerial").Log(KrLogLevel::Warning, {"AssignPortNumbers", "portnumbers"}, aText);
}

bool ParseLine(std::string_view aLine, PortNumbers& aNumbers, std::set<std::uint32_t>& aGiven) {
  std::uint32_t number = 0;
  const char* const end = aLine.data() + aLine.size();
  const auto [rest, error] = std::from_chars(aLine.data(), end, number);
  if (error != std::errc() || number < 1 || number > kMostComNumber || end - rest < 2 || *rest != ' ')
    return false;
  const std::string identity(rest + 1, end);
  return std::ranges::none_of(identity, [](unsigned char aByte) { return aByte < ' ' || aByte > '~'; }) &&
         aGiven.insert(number).second && aNumbers.emplace(identity, number).second;
}

// Held by one process at a time, and by one thread of it. A process that was stopped while it had it is not waited for
// without end.
class NumbersLock {
public:
  explicit NumbersLock(const std::string& aFile)
      : mDescriptor(::open((aFile + ".lock").c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600)) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (mDescriptor.IsOpen() && ::flock(mDescriptor.Get(), LOCK_EX | LOCK_NB) != 0) {
      if (std::chrono::steady_clock::now() > limit)
        mDescriptor.Close();
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }
  bool IsHeld() const { return mDescriptor.IsOpen(); }

private:
  krbase::FileDescriptor mDescriptor;
};

// OK with no numbers where there is no file.
KrResult ReadNumbers(const std::string& aFile, PortNumbers& aNumbers) {
  aNumbers.clear();
  std::string text;
  KrResult read = KrReadWholeFile(aFile, kMostNumbersBytes, text);
  if (read == KrResult::Code::NotFound)
    return {};
  return read.IsOK() ? ParsePortNumbers(text, aNumbers) : read;
}

bool IsDamaged(const KrResult& aRead) {
  return aRead == KrResult::Code::BadData || aRead == KrResult::Code::OutOfRange;
}

bool PutAside(const std::string& aFile, const KrResult& aRead) {
  Warn("The numbers of the serial ports are given anew, as " + aFile +
       " is damaged: " + aRead.GetDescription().ToUtf8() + " It is kept as " + aFile + ".damaged.");
  std::error_code error;
  std::filesystem::rename(aFile, aFile + ".damaged", error);
  return !error;
}

KrResult WriteNumbers(const std::string& aFile, const PortNumbers& aNumbers) {
  const std::string text = FormatPortNumbers(aNumbers);
  KrAtomicFile file;
  KrResult result = file.Open(aFile, KrAtomicFile::Existing::Replaced);
  if (result.IsOK())
    result = file.Write(text.data(), text.size());
  return result.IsOK() ? file.Commit() : result;
}

bool HasAll(const PortNumbers& aNumbers, const std::vector<std::string>& aIdentities) {
  return std::ranges::all_of(aIdentities,
                             [&aNumbers](const std::string& aIdentity) { return aNumbers.contains(aIdentity); });
}

// Whether there was a number to give.
bool GiveNew(PortNumbers& aNumbers, const std::vector<std::string>& aIdentities, std::set<std::uint32_t> aTaken) {
  for (const auto& [identity, number] : aNumbers)
    aTaken.insert(number);
  bool isAnyNew = false;
  std::uint32_t next = 1;
  for (const std::string& identity : aIdentities) {
    if (aNumbers.contains(identity))
      continue;
    while (aTaken.contains(next))
      ++next;
    if (next > kMostComNumber) {
      Warn("No number is left for the serial port \"" + identity + "\".");
      break;
    }
    aNumbers.emplace(identity, next++);
    isAnyNew = true;
  }
  return isAnyNew;
}

// The file is there to be kept from here on, or the result says why it is not.
KrResult UpdateFile(const std::string& aFile, const std::vector<std::string>& aIdentities,
                    const std::set<std::uint32_t>& aTaken, PortNumbers& aNumbers) {
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(aFile).parent_path(), error);
  const NumbersLock lock(aFile);
  KrResult read = lock.IsHeld() ? ReadNumbers(aFile, aNumbers)
                                : KrResult(KrResult::Code::Busy, "they cannot be locked: " + aFile + ".lock.");
  if (IsDamaged(read) && PutAside(aFile, read))
    read = {};
  const bool isAnyNew = GiveNew(aNumbers, aIdentities, aTaken);
  return read.IsOK() && isAnyNew ? WriteNumbers(aFile, aNumbers) : read;
}

} // namespace

KrResult ParsePortNumbers(std::string_view aText, PortNumbers& aNumbers) {
  if (!aText.starts_with(kHeader))
    return {KrResult::Code::BadData, "line 1 is not \"" + std::string(kHeader.substr(0, kHeader.size() - 1)) + "\"."};
  aText.remove_prefix(kHeader.size());
  PortNumbers numbers;
  std::set<std::uint32_t> given;
  for (std::size_t line = 2; !aText.empty(); ++line) {
    const std::size_t size = aText.find('\n');
    if (size == std::string_view::npos || !ParseLine(aText.substr(0, size), numbers, given))
      return {KrResult::Code::BadData, "line " + std::to_string(line) +
                                           " is no number and identity of its own, with the line's end behind them."};
    aText.remove_prefix(size + 1);
  }
  aNumbers = std::move(numbers);
  return {};
}

std::string FormatPortNumbers(const PortNumbers& aNumbers) {
  std::map<std::uint32_t, std::string_view> ordered;
  for (const auto& [identity, number] : aNumbers)
    ordered.emplace(number, identity);
  std::string text(kHeader);
  for (const auto& [number, identity] : ordered)
    text.append(std::to_string(number)).append(" ").append(identity).append("\n");
  return text;
}

PortNumbers AssignPortNumbers(const std::string& aFile, const std::vector<std::string>& aIdentities,
                              const std::set<std::uint32_t>& aTaken) {
  PortNumbers numbers;
  if (ReadNumbers(aFile, numbers).IsOK() && HasAll(numbers, aIdentities))
    return numbers;
  if (const KrResult kept = UpdateFile(aFile, aIdentities, aTaken, numbers); !kept.IsOK())
    Warn("The numbers of new serial ports are not kept in " + aFile + ": " + kept.GetDescription().ToUtf8());
  return numbers;
}

} // namespace krserial
