#include "simulation/serial/talkinginstrument.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace krtransport {

namespace {

constexpr std::size_t kAnswerBytes = 4096;
constexpr std::size_t kLongestAnswerBytes = 512;
constexpr std::size_t kLongestCommandBytes = 80;
constexpr std::int32_t kLeastValue = -9999;
constexpr std::int32_t kMostValue = 9999;
constexpr std::uint64_t kReportIntervalNs = 1000000000;
constexpr std::string_view kUnknown = "?";
constexpr std::string_view kHelp = "*IDN?          model and serial number\r\n"
                                   "VALUE?         the value\r\n"
                                   "VALUE n        sets the value, -9999 to 9999\r\n"
                                   "REPORT?        whether reports come\r\n"
                                   "REPORT ON|OFF  a report every second\r\n"
                                   "HELP           this";

std::string MakeUpper(std::string_view aText) {
  std::string upper(aText);
  for (char& letter : upper) {
    if (letter >= 'a' && letter <= 'z')
      letter = static_cast<char>(letter - 'a' + 'A');
  }
  return upper;
}

} // namespace

const TalkingInstrument::Command TalkingInstrument::kCommands[] = {
    {"*IDN?", &TalkingInstrument::AnswerIdentity}, {"HELP", &TalkingInstrument::AnswerHelp},
    {"VALUE?", &TalkingInstrument::AnswerValue},   {"VALUE", &TalkingInstrument::SetValue},
    {"REPORT?", &TalkingInstrument::AnswerReport}, {"REPORT", &TalkingInstrument::SetReport},
};

TalkingInstrument::TalkingInstrument(std::string aSerialNumber)
    : mSerialNumber(std::move(aSerialNumber)), mAnswers(kAnswerBytes) {}

void TalkingInstrument::Open(std::uint32_t, Waker) {
  mAnswers.Clear();
  mLine.clear();
  mIsTooLong = false;
}

std::size_t TalkingInstrument::Take(const std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) {
  std::size_t taken = 0;
  while (taken < aSize && mAnswers.GetRoom() >= kLongestAnswerBytes) {
    const char character = static_cast<char>(aBytes[taken++]);
    if (character == '\r' || character == '\n')
      AnswerLine(aNowNs);
    else if (mLine.size() < kLongestCommandBytes)
      mLine += character;
    else
      mIsTooLong = true;
  }
  return taken;
}

void TalkingInstrument::AnswerLine(std::uint64_t aNowNs) {
  const std::string line = MakeUpper(std::exchange(mLine, {}));
  if (line.empty())
    return; // The second half of CR LF, or an empty line.
  const std::size_t space = std::min(line.find(' '), line.size());
  const std::string_view name = std::string_view(line).substr(0, space);
  const std::string_view argument = std::string_view(line).substr(std::min(space + 1, line.size()));
  const auto* const command = std::ranges::find(kCommands, name, &Command::name);
  if (std::exchange(mIsTooLong, false) || command == std::end(kCommands))
    Answer(kUnknown);
  else
    (this->*command->answer)(argument, aNowNs);
}

void TalkingInstrument::Answer(std::string_view aText) {
  const std::string text = std::string(aText) + "\r\n";
  mAnswers.Push(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

void TalkingInstrument::AnswerIdentity(std::string_view aArgument, std::uint64_t) {
  Answer(aArgument.empty() ? "Simulated Instrument," + mSerialNumber : std::string(kUnknown));
}

void TalkingInstrument::AnswerHelp(std::string_view aArgument, std::uint64_t) {
  Answer(aArgument.empty() ? kHelp : kUnknown);
}

void TalkingInstrument::AnswerValue(std::string_view aArgument, std::uint64_t) {
  Answer(aArgument.empty() ? "VALUE " + std::to_string(mValue) : std::string(kUnknown));
}

void TalkingInstrument::SetValue(std::string_view aArgument, std::uint64_t) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(aArgument.data(), aArgument.data() + aArgument.size(), value);
  const bool isNumber = error == std::errc() && end == aArgument.data() + aArgument.size();
  if (!isNumber || value < kLeastValue || value > kMostValue)
    return Answer("ERROR VALUE is a whole number from -9999 to 9999");
  mValue = value;
  Answer("OK");
}

void TalkingInstrument::AnswerReport(std::string_view aArgument, std::uint64_t) {
  const std::string_view state = mNextReportNs == kNever ? "REPORT OFF" : "REPORT ON";
  Answer(aArgument.empty() ? state : kUnknown);
}

void TalkingInstrument::SetReport(std::string_view aArgument, std::uint64_t aNowNs) {
  const bool isOn = aArgument == "ON";
  if (!isOn && aArgument != "OFF")
    return Answer("ERROR REPORT is ON or OFF");
  mReports = 0;
  mNextReportNs = isOn ? aNowNs + kReportIntervalNs : kNever;
  Answer("OK");
}

// One for each second that has passed, but for those for which the line had no time.
void TalkingInstrument::MakeReports(std::uint64_t aNowNs) {
  if (aNowNs < mNextReportNs)
    return;
  const std::uint64_t passed = (aNowNs - mNextReportNs) / kReportIntervalNs;
  mReports += static_cast<std::uint32_t>(passed) + 1;
  mNextReportNs += (passed + 1) * kReportIntervalNs;
  if (mAnswers.GetRoom() >= kLongestAnswerBytes)
    Answer("REPORT " + std::to_string(mReports) + " VALUE " + std::to_string(mValue));
}

std::size_t TalkingInstrument::Give(std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) {
  MakeReports(aNowNs);
  return mAnswers.Pop(aBytes, aSize);
}

} // namespace krtransport
