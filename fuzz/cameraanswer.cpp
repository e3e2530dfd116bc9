// What comes from a camera, held against any template of an answer: what is taken for a message lies within the bytes
// and stays one when more come, and what can never become one does not. A message that matches gives what the template
// asks for, and does not match with a byte changed that is fixed or checked.
//
// The first character chooses the checksum, the second is B for bytes, the rest of the line is the template. What comes
// from the camera begins behind it.

#include "camerafile/answermatching.h"
#include "require.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace krcamerabridge;

using Kind = TemplatePart::Kind;
using State = MessageSize::State;

constexpr std::size_t kChecksumKinds = std::size_t{static_cast<std::uint8_t>(ChecksumKind::Crc16Modbus)} + 1;
constexpr std::size_t kMostSteps = 64;

// Numbers for which the template names no format have that of their protocol.
void Complete(CommandTemplate& aTemplate, bool aIsBinary, bool aIsWide) {
  for (TemplatePart& part : aTemplate) {
    if (part.kind == Kind::Literal || part.format.kind != WireKind::Automatic)
      continue;
    const bool isOfFrame = part.kind == Kind::Check || part.kind == Kind::Length;
    if (isOfFrame)
      part.format = {.kind = aIsBinary ? WireKind::Unsigned : WireKind::Hex,
                     .size = (aIsBinary ? std::size_t{1} : std::size_t{2}) * (aIsWide ? 2 : 1)};
    else if (part.kind == Kind::Value || part.kind == Kind::Code)
      part.format = {.kind = aIsBinary ? WireKind::Unsigned : WireKind::Decimal, .size = aIsBinary ? 1u : 0u};
  }
}

// Whether a file may have it as an answer.
bool IsAnswer(const CommandTemplate& aTemplate) {
  const auto isOfAnyLength = [](const TemplatePart& aPart) { return GetFixedPartSize(aPart) == 0; };
  const auto isNoNumberOfFrame = [](const TemplatePart& aPart) {
    return (aPart.kind == Kind::Check || aPart.kind == Kind::Length) && !HasFixedWholeNumber(aPart);
  };
  if (std::ranges::any_of(aTemplate, isNoNumberOfFrame))
    return false;
  if (aTemplate.empty() || FindPart(aTemplate, Kind::Feature) || !FindAnswerProblem(aTemplate).empty())
    return false;
  const bool isFree = std::ranges::any_of(aTemplate, isOfAnyLength);
  return !isFree || FindPart(aTemplate, Kind::Length) || !GetEnding(aTemplate).empty();
}

// The bytes before a checksum whose place is the same in all messages; 0 where there is none.
std::size_t FindChecked(const CommandTemplate& aTemplate) {
  std::size_t place = 0;
  for (const TemplatePart& part : aTemplate) {
    if (part.kind == Kind::Check)
      return place;
    const std::size_t size = GetFixedPartSize(part);
    if (size == 0)
      break;
    place += size;
  }
  return 0;
}

// What a message gives is what the template has places for; a byte that its fixed text or its checksum does not allow
// refuses it.
void CheckContent(const CommandTemplate& aTemplate, const ChecksumRule& aRule, std::string_view aMessage) {
  const auto content = MatchAnswer(aTemplate, aRule, aMessage);
  if (!content)
    return;
  Require(content->value.has_value() == (FindPart(aTemplate, Kind::Value) != nullptr));
  Require(content->code.has_value() == (FindPart(aTemplate, Kind::Code) != nullptr));
  Require(content->text.empty() || FindPart(aTemplate, Kind::Text));

  std::string changed(aMessage);
  if (aTemplate.front().kind == Kind::Literal) {
    changed.front() = static_cast<char>(changed.front() ^ 1);
    Require(!MatchAnswer(aTemplate, aRule, changed));
  }
  if (const std::string_view ending = GetEnding(aTemplate); !ending.empty()) {
    Require(aMessage.ends_with(ending));
    changed = aMessage;
    changed.back() = static_cast<char>(changed.back() ^ 1);
    Require(!MatchAnswer(aTemplate, aRule, changed));
  }
  if (const std::size_t checked = FindChecked(aTemplate); checked > 0 && aRule.kind != ChecksumKind::None) {
    changed = aMessage;
    changed[checked - 1] = static_cast<char>(changed[checked - 1] ^ 1);
    Require(!MatchAnswer(aTemplate, aRule, changed));
  }
}

void Listen(const CommandTemplate& aTemplate, const ChecksumRule& aRule, std::string_view aBytes) {
  MessageSize before{State::More};
  const std::size_t step = std::max<std::size_t>(aBytes.size() / kMostSteps, 1);
  for (std::size_t received = 0; received <= aBytes.size(); received += step) {
    const MessageSize size = MeasureMessage(aTemplate, aBytes.substr(0, received));
    Require(size.state != State::Known || (size.size > 0 && size.size <= received));
    if (before.state == State::Known)
      Require(size.state == State::Known && size.size == before.size);
    if (before.state == State::Never)
      Require(size.state == State::Never);
    before = size;
  }
  if (before.state != State::Known)
    return;
  CheckContent(aTemplate, aRule, aBytes.substr(0, before.size));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::string_view input(reinterpret_cast<const char*>(aData), aSize);
  const std::size_t end = input.find('\n');
  if (end == std::string_view::npos || end < 2)
    return 0;
  const auto kind = static_cast<ChecksumKind>(static_cast<std::uint8_t>(input[0]) % kChecksumKinds);
  const bool isBinary = input[1] == 'B';
  std::vector<std::string> problems;
  CommandTemplate answer = ParseCommandTemplate(input.substr(2, end - 2), isBinary, problems);
  Require(std::ranges::none_of(problems, &std::string::empty));
  Complete(answer, isBinary, IsWideChecksum(kind));
  if (problems.empty() && IsAnswer(answer))
    Listen(answer, {.kind = kind}, input.substr(end + 1));
  return 0;
}
