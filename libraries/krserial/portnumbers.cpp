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

// Held by one process at a time, and by one thread of it, for moments. The wait is no queue: where many want it on a
// slow disk, one of them may be passed over for most of it. A process that was stopped while it had the lock is not
// waited for: a bridge that looks for its port must end soon.
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

bool IsDamaged(const KrResult& aRead) {
  return aRead == KrResult::Code::BadData || aRead == KrResult::Code::OutOfRange;
}

// The file that was put aside before may be the only one that says whose a number was.
std::string FindNameAside(const std::string& aFile) {
  constexpr int kMostAside = 100;
  std::string name = aFile + ".damaged";
  std::error_code error;
  for (int count = 2; count <= kMostAside && std::filesystem::exists(name, error); ++count)
    name = aFile + ".damaged." + std::to_string(count);
  return name;
}

bool PutAside(const std::string& aFile, const KrResult& aRead) {
  const std::string aside = FindNameAside(aFile);
  Warn("The numbers of the serial ports are given anew, as " + aFile +
       " is damaged: " + aRead.GetDescription().ToUtf8() + " It is kept as " + aside + ".");
  std::error_code error;
  std::filesystem::rename(aFile, aside, error);
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

// The first identity that begins so; the end where there is none.
PortNumbers::iterator FindStart(PortNumbers& aNumbers, const std::string& aStart) {
  const auto found = aNumbers.lower_bound(aStart);
  return found != aNumbers.end() && found->first.starts_with(aStart) ? found : aNumbers.end();
}

bool HasTwin(const TtyIdentity& aTty, const std::vector<TtyIdentity>& aTtys) {
  return std::ranges::any_of(
      aTtys, [&aTty](const TtyIdentity& aOther) { return aOther.text == aTty.text && aOther.place != aTty.place; });
}

// The identity that a tty's number is kept under. Makers that give all their adapters one serial number leave only the
// place to tell them apart; which of them came first keeps the number that it had alone.
std::string PutInPlace(PortNumbers& aNumbers, const TtyIdentity& aTty, const std::vector<TtyIdentity>& aTtys,
                       bool& aIsChanged) {
  if (aTty.place.empty())
    return aTty.text;
  const std::string start = aTty.text + " last @";
  const std::string movable = aTty.text + " last " + aTty.place;
  const std::string fixed = aTty.text + " " + aTty.place;
  if (aNumbers.contains(fixed))
    return fixed;
  if (aNumbers.contains(movable))
    return movable;
  if (HasTwin(aTty, aTtys) || FindStart(aNumbers, aTty.text + " @") != aNumbers.end())
    return fixed;
  if (const auto moved = FindStart(aNumbers, start); moved != aNumbers.end()) {
    auto node = aNumbers.extract(moved);
    node.key() = movable;
    aNumbers.insert(std::move(node));
    aIsChanged = true;
  }
  return movable;
}

// The numbers of the ttys; aIsChanged says whether the file has others, or lacks some.
std::vector<std::uint32_t> Give(PortNumbers& aNumbers, const std::vector<TtyIdentity>& aTtys,
                                std::set<std::uint32_t> aTaken, bool& aIsChanged) {
  for (const auto& [identity, number] : aNumbers)
    aTaken.insert(number);
  std::vector<std::uint32_t> given;
  std::uint32_t next = 1;
  for (const TtyIdentity& tty : aTtys) {
    const std::string identity = PutInPlace(aNumbers, tty, aTtys, aIsChanged);
    if (!aNumbers.contains(identity)) {
      while (aTaken.contains(next))
        ++next;
      if (next <= kMostComNumber) {
        aNumbers.emplace(identity, next++);
        aIsChanged = true;
      }
    }
    const auto number = aNumbers.find(identity);
    given.push_back(number == aNumbers.end() ? 0 : number->second);
    if (given.back() == 0)
      Warn("No number is left for the serial port \"" + identity + "\".");
  }
  return given;
}

// The file is there to be kept from here on, or the result says why it is not.
KrResult UpdateFile(const std::string& aFile, const std::vector<TtyIdentity>& aTtys,
                    const std::set<std::uint32_t>& aTaken, std::vector<std::uint32_t>& aGiven) {
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(aFile).parent_path(), error);
  const NumbersLock lock(aFile);
  // What has a number keeps it, also where nothing new can be kept.
  PortNumbers numbers;
  KrResult read = ReadPortNumbers(aFile, numbers);
  if (!lock.IsHeld())
    read = {KrResult::Code::Busy, "they cannot be locked: " + aFile + ".lock."};
  if (IsDamaged(read) && PutAside(aFile, read))
    read = {};
  bool isChanged = false;
  aGiven = Give(numbers, aTtys, aTaken, isChanged);
  return read.IsOK() && isChanged ? WriteNumbers(aFile, numbers) : read;
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

KrResult ReadPortNumbers(const std::string& aFile, PortNumbers& aNumbers) {
  std::string text;
  KrResult read = KrReadWholeFile(aFile, kMostNumbersBytes, text);
  if (read == KrResult::Code::NotFound) {
    aNumbers.clear();
    return {};
  }
  return read.IsOK() ? ParsePortNumbers(text, aNumbers) : read;
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

std::vector<std::uint32_t> AssignPortNumbers(const std::string& aFile, const std::vector<TtyIdentity>& aTtys,
                                             const std::set<std::uint32_t>& aTaken) {
  PortNumbers numbers;
  bool isChanged = false;
  std::vector<std::uint32_t> given;
  if (ReadPortNumbers(aFile, numbers).IsOK())
    given = Give(numbers, aTtys, aTaken, isChanged);
  if (given.size() == aTtys.size() && !isChanged)
    return given;
  if (const KrResult kept = UpdateFile(aFile, aTtys, aTaken, given); !kept.IsOK())
    Warn("The numbers of new serial ports are not kept in " + aFile + ": " + kept.GetDescription().ToUtf8());
  return given;
}

} // namespace krserial
