#include "camerafile/protocolreader.h"

#include <algorithm>
#include <utility>

namespace krcamerabridge {

namespace {

using Kind = TemplatePart::Kind;

constexpr std::size_t kMostErrors = 64;
constexpr std::size_t kMostCodes = 256;
constexpr std::uint32_t kMostMs = 600000;

constexpr YamlWord kDataWords[] = {{"text", 0}, {"binary", 1}};

constexpr YamlWord kCheckWords[] = {
    {"sum8", static_cast<std::int32_t>(ChecksumKind::Sum8)},
    {"twosComplement8", static_cast<std::int32_t>(ChecksumKind::TwosComplement8)},
    {"onesComplement8", static_cast<std::int32_t>(ChecksumKind::OnesComplement8)},
    {"xor8", static_cast<std::int32_t>(ChecksumKind::Xor8)},
    {"sum16", static_cast<std::int32_t>(ChecksumKind::Sum16)},
    {"crc8", static_cast<std::int32_t>(ChecksumKind::Crc8)},
    {"crc16ccitt", static_cast<std::int32_t>(ChecksumKind::Crc16Ccitt)},
    {"crc16xmodem", static_cast<std::int32_t>(ChecksumKind::Crc16Xmodem)},
    {"crc16modbus", static_cast<std::int32_t>(ChecksumKind::Crc16Modbus)},
};

WireFormat GetDefaultCheckFormat(bool aIsBinary, bool aIsWide) {
  const std::size_t bytes = aIsWide ? 2 : 1;
  if (aIsBinary)
    return {.kind = WireKind::Unsigned, .size = bytes, .isBigEndian = true};
  return {.kind = WireKind::Hex, .size = 2 * bytes};
}

class ProtocolReader {
public:
  ProtocolReader(const YamlNode& aNode, TextProblems& aProblems) : mMap(aNode, "the protocol", aProblems) {}

  ReadProtocol Read() {
    FileProtocol& protocol = mRead.protocol;
    mMap.TakeWord("data", kDataWords, protocol.isBinary);
    mMap.TakeNumber("baudRate", protocol.baudRate, 1, 100000000);
    mMap.TakeNumber("answerMs", protocol.answerMs, 1, kMostMs);
    mMap.TakeNumber("pauseMs", protocol.pauseMs, 0, kMostMs);
    mMap.TakeNumber("repeats", protocol.repeats, 0, 9);
    if (mMap.IsCut() && !mMap.Find("data"))
      return std::move(mRead); // Whether templates are texts or bytes is not known.
    if (const YamlNode* const check = mMap.Find("check"))
      ReadCheck(*check);
    ReadFrame();
    ReadAnswers();
    if (mMap.Find("errors"))
      for (const YamlNode& item : mMap.TakeItems("errors", kMostErrors))
        ReadError(item);
    ReadProbe();
    mMap.Finish();
    return std::move(mRead);
  }

private:
  void ReadCheck(const YamlNode& aNode) {
    FileMap map(aNode, "a checksum", mMap.GetProblem());
    ChecksumRule& rule = mRead.protocol.check;
    if (const YamlNode* const kind = map.FindNeeded("kind"))
      if (const YamlWord* const row = map.ReadWord(*kind, "kind", kCheckWords))
        rule.kind = static_cast<ChecksumKind>(row->value);
    map.TakeNumber("from", rule.from, 0, 255);
    map.TakeNumber("gap", rule.gap, 0, 255);
    const bool isWide = IsWideChecksum(rule.kind);
    rule.format = GetDefaultCheckFormat(mRead.protocol.isBinary, isWide);
    if (const YamlNode* const write = map.Find("write"); write && map.IsScalar(*write, "write")) {
      const std::optional<WireFormat> format = ParseWireFormat(write->text);
      if (!format || !IsWholeNumber(*format) || GetFixedSize(*format) == 0 ||
          GetWireRange(*format).most < (isWide ? 0xFFFF : 0xFF) || (IsBinary(*format) && !mRead.protocol.isBinary))
        map.Report(write->place, "\"write\" has to be a format of fixed size that holds the checksum, for example "
                                 "hex2, hex4, or, of binary data, u8 and u16be; not " +
                                     FileMap::Quote(write->text));
      else
        rule.format = *format;
    }
    map.Finish();
  }

  // A template that is a part of every message.
  void ReadPart(std::string_view aKey, CommandTemplate& aPart) {
    const YamlNode* const node = mMap.Find(aKey);
    std::optional<CommandTemplate> read = mMap.TakeTemplate(aKey, mRead.protocol.isBinary, {Kind::Check, Kind::Length});
    if (node && read)
      aPart = std::move(*read);
  }

  // Bytes that are always the same.
  void ReadLiteral(std::string_view aKey, std::string& aBytes) {
    if (const auto read = mMap.TakeTemplate(aKey, mRead.protocol.isBinary, {}))
      aBytes = GetEnding(*read);
  }

  void ReadFrame() {
    FileProtocol& protocol = mRead.protocol;
    ReadPart("commandStart", protocol.commandStart);
    ReadPart("commandEnd", protocol.commandEnd);
    ReadPart("answerStart", protocol.answerStart);
    ReadPart("answerEnd", protocol.answerEnd);
    if (!protocol.isBinary && GetEnding(protocol.answerEnd).empty())
      mMap.ReportMissing(mMap.GetPlace(),
                         "the protocol needs the key \"answerEnd\" with the characters that end every answer, "
                         "for example \"\\r\\n\"");
    mMap.TakeFlag("echo", protocol.hasEcho);
    protocol.echoEnd = GetEnding(protocol.commandEnd);
    ReadLiteral("echoEnd", protocol.echoEnd);
    ReadLiteral("prompt", protocol.prompt);
  }

  void ReadAnswers() {
    const bool isBinary = mRead.protocol.isBinary;
    mRead.getAnswer = mMap.TakeTemplate("getAnswer", isBinary, {Kind::Value, Kind::Check, Kind::Length, Kind::Skip});
    const YamlNode* const setAnswer = mMap.Find("setAnswer");
    mRead.hasSetAnswer = setAnswer != nullptr;
    if (setAnswer && setAnswer->kind != YamlKind::Null)
      mRead.setAnswer = mMap.TakeTemplate("setAnswer", isBinary, {Kind::Value, Kind::Check, Kind::Length, Kind::Skip});
  }

  void ReadError(const YamlNode& aNode) {
    FileMap map(aNode, "an error", mMap.GetProblem());
    FileError error;
    map.TakeLine("text", error.text);
    map.TakeFlag("damaged", error.isDamage);
    if (const YamlNode* const codes = map.Find("codes"))
      ReadCodes(*codes, map, error);
    if (const YamlNode* const node = map.FindNeeded("answer")) {
      std::optional<CommandTemplate> answer = map.TakeTemplate(
          "answer", mRead.protocol.isBinary, {Kind::Text, Kind::Code, Kind::Check, Kind::Length, Kind::Skip});
      // A protocol that is cut may lack what stands at the ends of every answer.
      if (answer && SetFormats(*answer, error, map, node->place) && !mMap.IsCut())
        if (auto whole = CompleteAnswer(mRead.protocol, *answer, map, node->place, "answer"))
          error.answer = std::move(*whole);
    }
    map.Finish();
    mRead.protocol.errors.push_back(std::move(error));
  }

  bool SetFormats(CommandTemplate& aAnswer, const FileError& aError, FileMap& aMap, const TextPlace& aPlace) {
    bool hasCode = false;
    for (TemplatePart& part : aAnswer) {
      if (part.kind != Kind::Code)
        continue;
      hasCode = true;
      if (part.format.kind == WireKind::Automatic && !mRead.protocol.isBinary)
        part.format.kind = WireKind::Decimal;
      if (!IsWholeNumber(part.format)) {
        aMap.Report(aPlace, "the placeholder {code} needs the format of a whole number, for example {code:hex2} or, of "
                            "binary data, {code:u8}");
        return false;
      }
    }
    if (!hasCode && !aError.codes.empty())
      aMap.Report(aPlace, "with \"codes\" the answer needs the placeholder {code}");
    return hasCode || aError.codes.empty();
  }

  static void ReadCodes(const YamlNode& aNode, FileMap& aMap, FileError& aError) {
    if (aNode.kind != YamlKind::Map || aNode.items.size() > kMostCodes) {
      aMap.Report(aNode.place,
                  "\"codes\" has to be at most " + std::to_string(kMostCodes) + " numbers, each with its text");
      return;
    }
    for (std::size_t i = 0; i < aNode.items.size(); ++i) {
      const auto& [key, place] = aNode.keys[i];
      const std::optional<std::int64_t> code = ParseWhole(key);
      if (!code)
        aMap.Report(place, "the code " + FileMap::Quote(key) + " is no whole number");
      if (aMap.IsScalar(aNode.items[i], key) && code)
        aError.codes[*code] = aNode.items[i].text;
    }
  }

  void ReadProbe() {
    const YamlNode* const node = mMap.Find("probe");
    if (!node || !mMap.IsScalar(*node, "probe"))
      return;
    mRead.probe = node->text;
    mRead.probePlace = node->place;
  }

  FileMap mMap;
  ReadProtocol mRead;
};

// Gives checksums and lengths their formats; false, and a problem, where that cannot be.
bool SetFrameFormats(const FileProtocol& aProtocol, CommandTemplate& aTemplate, FileMap& aMap, const TextPlace& aPlace,
                     std::string_view aKey) {
  const std::string key = "\"" + std::string(aKey) + "\": ";
  std::size_t lengths = 0;
  for (TemplatePart& part : aTemplate) {
    if (part.kind == Kind::Check) {
      if (aProtocol.check.kind == ChecksumKind::None) {
        aMap.Report(aPlace, key + "{check} needs the protocol's key \"check\" with the kind of the checksum");
        return false;
      }
      if (part.format.kind == WireKind::Automatic)
        part.format = aProtocol.check.format;
    }
    if (part.kind == Kind::Length)
      ++lengths;
    if ((part.kind == Kind::Length || part.kind == Kind::Check) && !HasFixedWholeNumber(part)) {
      aMap.Report(aPlace, key + "{check} and {length} need the format of a whole number with a fixed size, for example "
                                "{length:u8} or {check:hex2}");
      return false;
    }
  }
  if (lengths > 1)
    aMap.Report(aPlace, key + "there can be one {length} only");
  return lengths <= 1;
}

} // namespace

ReadProtocol ReadFileProtocol(const YamlNode& aNode, TextProblems& aProblems) {
  return ProtocolReader(aNode, aProblems).Read();
}

std::optional<CommandTemplate> CompleteAnswer(const FileProtocol& aProtocol, CommandTemplate aAnswer, FileMap& aMap,
                                              const TextPlace& aPlace, std::string_view aKey) {
  CommandTemplate whole = Join(Join(aProtocol.answerStart, aAnswer), aProtocol.answerEnd);
  if (!SetFrameFormats(aProtocol, whole, aMap, aPlace, aKey))
    return std::nullopt;
  std::string problem = FindAnswerProblem(whole);
  const auto free = std::ranges::find_if(whole, [](const TemplatePart& aPart) { return GetFixedPartSize(aPart) == 0; });
  // Behind what is of any length nobody knows where it stands.
  const bool hasLength =
      std::any_of(whole.begin(), free, [](const TemplatePart& aPart) { return aPart.kind == Kind::Length; });
  if (problem.empty() && whole.empty())
    problem = "an answer has to have bytes; ~ says that there is none";
  if (problem.empty() && aProtocol.isBinary && free != whole.end() && !hasLength && GetEnding(whole).empty())
    problem = "an answer of any length has to have a {length} in front of that, or fixed bytes at its end";
  if (problem.empty())
    return whole;
  aMap.Report(aPlace, "\"" + std::string(aKey) + "\": " + problem);
  return std::nullopt;
}

std::optional<CommandTemplate> CompleteCommand(const FileProtocol& aProtocol, CommandTemplate aCommand, FileMap& aMap,
                                               const TextPlace& aPlace, std::string_view aKey) {
  CommandTemplate whole = Join(Join(aProtocol.commandStart, aCommand), aProtocol.commandEnd);
  if (!SetFrameFormats(aProtocol, whole, aMap, aPlace, aKey))
    return std::nullopt;
  if (!whole.empty())
    return whole;
  aMap.Report(aPlace, "\"" + std::string(aKey) + "\": a command has to have bytes");
  return std::nullopt;
}

} // namespace krcamerabridge
