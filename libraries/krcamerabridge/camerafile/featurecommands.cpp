#include "camerafile/featurecommands.h"

#include <algorithm>
#include <utility>

namespace krcamerabridge {

namespace {

using Kind = TemplatePart::Kind;

bool Fits(FileType aType, const WireFormat& aFormat) {
  switch (aType) {
  case FileType::Integer:
  case FileType::Float:
    return IsNumber(aFormat);
  case FileType::String:
    return IsText(aFormat);
  default:
    return IsText(aFormat) || IsWholeNumber(aFormat);
  }
}

class CommandsReader {
public:
  CommandsReader(FileMap& aMap, const ReadProtocol& aProtocol, FileFeature& aFeature, FeatureReferences& aReferences)
      : mMap(aMap), mProtocol(aProtocol), mFeature(aFeature), mReferences(aReferences) {}

  void Read() {
    if (mFeature.type == FileType::Command) {
      if (mMap.FindNeeded("execute"))
        ReadSet("execute", "executeAnswer", false);
      return;
    }
    const bool isHeld = mMap.Find("start") || mMap.Find("constant");
    if (mMap.Find("get"))
      ReadGet();
    else if (const YamlNode* const answer = mMap.Find("getAnswer"))
      mMap.ReportMissing(answer->place, "\"getAnswer\" needs the key \"get\"");
    if (mMap.Find("set"))
      ReadSet("set", "setAnswer", true);
    else if (const YamlNode* const answer = mMap.Find("setAnswer"))
      mMap.ReportMissing(answer->place, "\"setAnswer\" needs the key \"set\"");
    if (!mMap.Find("get") && !mMap.Find("set") && !isHeld)
      mMap.ReportMissing(mMap.GetPlace(),
                         "a feature needs one of the keys \"get\", \"set\", \"start\" and \"constant\"");
  }

private:
  bool IsBinaryData() const { return mProtocol.protocol.isBinary; }

  // Gives the values their formats; nothing, and a problem, where there are too few or too many, or formats do not fit.
  bool SetValueFormats(CommandTemplate& aTemplate, std::string_view aKey, const TextPlace& aPlace) {
    for (TemplatePart& part : aTemplate) {
      if (part.kind != Kind::Value)
        continue;
      if (part.format.kind == WireKind::Automatic)
        part.format = GetDefaultFormat(mFeature.type, IsBinaryData());
      if (part.format.kind == WireKind::Automatic) {
        mMap.Report(aPlace,
                    "\"" + std::string(aKey) + "\": in binary data {value} needs a format, for example {value:u8}");
        return false;
      }
      if (!Fits(mFeature.type, part.format)) {
        mMap.Report(aPlace, "\"" + std::string(aKey) + "\": the format of {value} is not for features of this type");
        return false;
      }
    }
    return true;
  }

  bool CheckValueCount(const CommandTemplate& aTemplate, std::string_view aKey, const TextPlace& aPlace,
                       std::size_t aLeast, std::size_t aMost) {
    const auto count = static_cast<std::size_t>(std::ranges::count(aTemplate, Kind::Value, &TemplatePart::kind));
    if (count >= aLeast && count <= aMost)
      return true;
    mMap.Report(aPlace, "\"" + std::string(aKey) + "\" needs the placeholder {value}" + (aMost == 1 ? ", once" : ""));
    return false;
  }

  void ReadGet() {
    const TextPlace place = mMap.Find("get")->place;
    mReferences.commandPlace = place;
    std::optional<CommandTemplate> get =
        mMap.TakeTemplate("get", IsBinaryData(), {Kind::Feature, Kind::Check, Kind::Length});
    if (get)
      mFeature.get = CompleteCommand(mProtocol.protocol, *get, mMap, place, "get");
    std::optional<CommandTemplate> answer = mProtocol.getAnswer;
    TextPlace answerPlace = place;
    if (const YamlNode* const node = mMap.Find("getAnswer")) {
      answerPlace = node->place;
      answer = mMap.TakeTemplate("getAnswer", IsBinaryData(),
                                 {Kind::Value, Kind::Feature, Kind::Check, Kind::Length, Kind::Skip});
      if (!answer)
        return;
    } else if (!answer && IsBinaryData()) {
      mMap.ReportMissing(place,
                         "\"get\" needs the key \"getAnswer\" with what the camera answers, here or in the protocol");
      return;
    } else if (!answer) {
      answer = CommandTemplate{{.kind = Kind::Value}};
    }
    if (!CheckValueCount(*answer, "getAnswer", answerPlace, 1, 1) ||
        !SetValueFormats(*answer, "getAnswer", answerPlace))
      return;
    if (auto whole = CompleteAnswer(mProtocol.protocol, *answer, mMap, answerPlace, "getAnswer"))
      mFeature.getAnswer = std::move(*whole);
  }

  void ReadSet(std::string_view aKey, std::string_view aAnswerKey, bool aHasValue) {
    const TextPlace place = mMap.Find(aKey)->place;
    mReferences.commandPlace = place;
    std::optional<CommandTemplate> set =
        aHasValue ? mMap.TakeTemplate(aKey, IsBinaryData(), {Kind::Value, Kind::Feature, Kind::Check, Kind::Length})
                  : mMap.TakeTemplate(aKey, IsBinaryData(), {Kind::Feature, Kind::Check, Kind::Length});
    if (set && CheckValueCount(*set, aKey, place, aHasValue ? 1 : 0, kMostTemplateParts) &&
        SetValueFormats(*set, aKey, place))
      mFeature.set = CompleteCommand(mProtocol.protocol, *set, mMap, place, aKey);
    ReadSetAnswer(aKey, aAnswerKey, place);
  }

  void ReadSetAnswer(std::string_view aKey, std::string_view aAnswerKey, const TextPlace& aPlace) {
    const YamlNode* const node = mMap.Find(aAnswerKey);
    if (!node && !mProtocol.hasSetAnswer) {
      mMap.ReportMissing(aPlace, "\"" + std::string(aKey) + "\" needs the key \"" + std::string(aAnswerKey) +
                                     "\" with what the camera answers, or ~ where it answers nothing, here or as "
                                     "\"setAnswer\" in the protocol");
      return;
    }
    if (node && node->kind == YamlKind::Null)
      return;
    std::optional<CommandTemplate> answer =
        node ? mMap.TakeTemplate(aAnswerKey, IsBinaryData(),
                                 {Kind::Value, Kind::Feature, Kind::Check, Kind::Length, Kind::Skip})
             : mProtocol.setAnswer;
    const TextPlace place = node ? node->place : aPlace;
    if (answer && mFeature.type == FileType::Command && FindPart(*answer, Kind::Value)) {
      mMap.Report(place, "\"" + std::string(aAnswerKey) + "\": a command has no {value}");
      return;
    }
    if (answer && SetValueFormats(*answer, aAnswerKey, place))
      mFeature.setAnswer = CompleteAnswer(mProtocol.protocol, *answer, mMap, place, aAnswerKey);
  }

  FileMap& mMap;
  const ReadProtocol& mProtocol;
  FileFeature& mFeature;
  FeatureReferences& mReferences;
};

} // namespace

void ReadFeatureCommands(FileMap& aMap, const ReadProtocol& aProtocol, FileFeature& aFeature,
                         FeatureReferences& aReferences) {
  CommandsReader(aMap, aProtocol, aFeature, aReferences).Read();
}

WireFormat GetDefaultFormat(FileType aType, bool aIsBinary) {
  if (aType == FileType::String)
    return {.kind = WireKind::Text};
  if (aIsBinary)
    return {};
  switch (aType) {
  case FileType::Integer:
    return {.kind = WireKind::Decimal};
  case FileType::Float:
    return {.kind = WireKind::Real};
  default:
    return {.kind = WireKind::Text};
  }
}

} // namespace krcamerabridge
