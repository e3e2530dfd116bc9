#include "camerafile/camerafilereader.h"

#include "camerafile/camerafile.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <ostream>
#include <string>

namespace krcamerabridge {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kHead = "cameraFile: 1\n"                                                       // 1
                              "camera: {vendor: V, model: M}\n"                                       // 2
                              "protocol: {answerEnd: \"\\r\", commandEnd: \"\\r\", setAnswer: OK}\n"; // 3

// A text camera with one category, in whose list of features aFeatures stands from line 6 on.
std::string WithFeatures(const std::string& aFeatures) {
  return kHead + std::string("categories:\n  - name: C\n    features:\n") + aFeatures;
}

std::string WithProtocol(const std::string& aProtocol) {
  return "cameraFile: 1\ncamera: {vendor: V, model: M}\nprotocol: " + aProtocol +
         "\ncategories: [{name: C, features: [{name: F, type: integer, start: 1}]}]\n";
}

std::vector<std::string> GetErrors(const std::string& aText) {
  std::vector<std::string> errors;
  const bool isRead = ReadCameraFileText(aText, errors).has_value();
  EXPECT_EQ(isRead, errors.empty());
  return errors;
}

FileModel Read(const std::string& aText) {
  std::vector<std::string> errors;
  std::optional<FileModel> model = ReadCameraFileText(aText, errors);
  EXPECT_THAT(errors, IsEmpty()) << aText;
  return model.value_or(FileModel());
}

struct Row {
  const char* name;
  std::string text;
  const char* error;
};

void PrintTo(const Row& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

const Row kFileRows[] = {
    {"Nothing", "", "1:1: a camera file has to be keys with values"},
    {"NoYaml", "camera: [", "1:"},
    {"NoText", "camera: \xFF\n", "1:9: the file is no UTF-8 text"},
    {"NoVersion",
     "camera: {vendor: V, model: M}\nprotocol: {answerEnd: x}\ncategories: [{name: C, features: [{name: F, type: "
     "integer, start: 1}]}]\n",
     "1:1: a camera file needs the key \"cameraFile\""},
    {"NewerVersion", "cameraFile: 2\n", "1:13: \"cameraFile\" has to be a whole number from 1 to 1, not \"2\""},
    {"NoFeature", kHead + std::string("categories: [{name: C}]\n"), "4:13: there has to be a feature"},
    {"UnknownKey", WithFeatures("      - {name: A, type: integer, start: 1}\n") + "categorys: 1\n",
     "8:1: a camera file has no key \"categorys\"; is \"categories\" meant?"},
    {"CategoryWithoutName", kHead + std::string("categories: [{features: [{name: F, type: integer, start: 1}]}]\n"),
     "4:14: a category needs the key \"name\""},
};

const Row kProtocolRows[] = {
    {"NoAnswerEnd", WithProtocol("{data: text}"), "3:11: the protocol needs the key \"answerEnd\""},
    {"Data", WithProtocol("{answerEnd: x, data: words}"),
     "3:32: \"data\" has to be one of text, binary; not \"words\""},
    {"BaudRate", WithProtocol("{answerEnd: x, baudRate: fast}"), "3:36: \"baudRate\" has to be a whole number from 1"},
    {"AnswerMs", WithProtocol("{answerEnd: x, answerMs: 0}"), "3:36: \"answerMs\" has to be a whole number from 1"},
    {"CheckKind", WithProtocol("{answerEnd: x, check: {kind: crc}}"), "3:40: \"kind\" has to be one of sum8"},
    {"CheckWithoutKind", WithProtocol("{answerEnd: x, check: {write: hex2}}"),
     "3:33: a checksum needs the key \"kind\""},
    {"CheckTooNarrow", WithProtocol("{answerEnd: x, check: {kind: sum16, write: hex2}}"),
     "3:54: \"write\" has to be a format of fixed size"},
    {"BinaryCheckInText", WithProtocol("{answerEnd: x, check: {kind: sum8, write: u8}}"),
     "3:53: \"write\" has to be a format of fixed size"},
    {"PlaceholderInStart", WithProtocol("{answerEnd: x, commandStart: '{value}'}"),
     "3:40: \"commandStart\": the placeholder cannot stand here; of placeholders there can be {check}, {length}"},
    {"PlaceholderInPrompt", WithProtocol("{answerEnd: x, prompt: '{check}'}"),
     "3:34: \"prompt\": the placeholder cannot stand here; of placeholders there can be none"},
    {"Echo", WithProtocol("{answerEnd: x, echo: yes}"), "3:32: \"echo\" has to be true or false, not \"yes\""},
    {"ErrorWithoutAnswer", WithProtocol("{answerEnd: x, errors: [{text: t}]}"),
     "3:35: an error needs the key \"answer\""},
    {"CodesWithoutCode", WithProtocol("{answerEnd: x, errors: [{answer: E, codes: {1: a}}]}"),
     "3:44: with \"codes\" the answer needs the placeholder {code}"},
    {"CodeIsNoNumber", WithProtocol("{answerEnd: x, errors: [{answer: 'E{code}', codes: {one: a}}]}"),
     "3:63: the code \"one\" is no whole number"},
    {"CodeFormat", WithProtocol("{answerEnd: x, errors: [{answer: 'E{code:text}'}]}"),
     "3:44: the placeholder {code} needs the format of a whole number"},
    {"ProbeOfNothing", WithProtocol("{answerEnd: x, probe: G}"), "3:33: there is no feature \"G\""},
    {"ProbeThatCannotBeAsked", WithProtocol("{answerEnd: x, probe: F}"),
     "3:33: the feature of \"probe\" needs the key \"get\""},
    {"UnknownKey", WithProtocol("{answerEnd: x, baudrate: 1}"),
     "3:26: the protocol has no key \"baudrate\"; is \"baudRate\" meant?"},
};

Row Feature(const char* aName, const std::string& aFeature, const char* aError) {
  return {aName, WithFeatures("      - " + aFeature + "\n"), aError};
}

const Row kFeatureRows[] = {
    Feature("NoName", "{type: integer, start: 1}", "7:9: a feature needs the key \"name\""),
    Feature("BadName", "{name: 2nd, type: integer, start: 1}", "7:16: \"2nd\" is no name"),
    Feature("TwoUnderscores", "{name: a__b, type: integer, start: 1}", "7:16: \"a__b\" is no name"),
    Feature("ReservedName", "{name: Root, type: integer, start: 1}", "7:16: the name \"Root\" is used by every"),
    Feature("NameOfACategory", "{name: C, type: integer, start: 1}", "7:16: the name \"C\" is used in line 5 already"),
    Feature("NoType", "{name: A, start: 1}", "7:9: a feature needs the key \"type\""),
    Feature("UnknownType", "{name: A, type: int, start: 1}", "7:25: \"type\" has to be one of integer, float, string"),
    Feature("UnknownKey", "{name: A, type: integer, start: 1, maximum: 2}", "7:44: a feature has no key \"maximum\""),
    Feature("KeyOfAnotherType", "{name: A, type: string, start: a, min: 2}",
            "7:48: a feature of the type string has no key \"min\""),
    Feature("NoWayToIt", "{name: A, type: integer}",
            "7:9: a feature needs one of the keys \"get\", \"set\", \"start\""),
    Feature("CommandWithoutExecute", "{name: A, type: command}", "7:9: a feature needs the key \"execute\""),
    Feature("ExecuteWithValue", "{name: A, type: command, execute: 'X{value}'}",
            "7:43: \"execute\": the placeholder cannot stand here"),
    Feature("SetWithoutValue", "{name: A, type: integer, set: X}", "7:39: \"set\" needs the placeholder {value}"),
    Feature("GetWithValue", "{name: A, type: integer, get: 'X{value}'}",
            "7:39: \"get\": the placeholder cannot stand here"),
    Feature("GetAnswerWithoutValue", "{name: A, type: integer, get: X, getAnswer: Y}",
            "7:53: \"getAnswer\" needs the placeholder {value}, once"),
    Feature("GetAnswerWithTwoValues", "{name: A, type: integer, get: X, getAnswer: '{value} {value}'}",
            "7:53: \"getAnswer\" needs the placeholder {value}, once"),
    Feature("GetAnswerThatCannotBeTold", "{name: A, type: integer, get: X, getAnswer: '{value}{skip}'}",
            "7:53: \"getAnswer\": what can have any length has to be followed by"),
    Feature("GetAnswerAlone", "{name: A, type: integer, start: 1, getAnswer: '{value}'}",
            "7:55: \"getAnswer\" needs the key \"get\""),
    Feature("SetAnswerAlone", "{name: A, type: integer, start: 1, setAnswer: OK}",
            "7:55: \"setAnswer\" needs the key \"set\""),
    Feature("UnknownFormat", "{name: A, type: integer, set: 'X{value:hexx}'}",
            "7:39: \"set\": the placeholder {value:hexx} has no format that is known"),
    Feature("FormatOfAnotherType", "{name: A, type: integer, set: 'X{value:text}'}",
            "7:39: \"set\": the format of {value} is not for features of this type"),
    Feature("BinaryFormatInText", "{name: A, type: integer, set: 'X{value:u8}'}",
            "7:39: \"set\": binary formats need the protocol's key \"data\" to be binary"),
    Feature("CheckWithoutKind", "{name: A, type: integer, set: 'X{value}{check}'}",
            "7:39: \"set\": {check} needs the protocol's key \"check\""),
    Feature("UnknownPlaceholder", "{name: A, type: integer, set: 'X{valeu}{value}'}",
            "7:39: there is no feature \"valeu\""),
    Feature("PlaceholderOfAnAskedFeature",
            "{name: A, type: integer, get: X}\n      - {name: B, type: integer, get: 'X{A}'}",
            "8:39: the placeholder {A} has to name another feature, one that the program remembers"),
    Feature("BadBackslash", "{name: A, type: integer, get: 'X\\q'}", "7:39: \"get\": a backslash has to be one of"),
    Feature("MinIsNoNumber", "{name: A, type: integer, start: 1, min: 1.5}",
            "7:49: \"min\" has to be a whole number, not"),
    Feature("MaxBelowMin", "{name: A, type: float, start: 2, min: 2, max: 1}", "7:55: \"max\" is less than \"min\""),
    Feature("MaxIsNoFeature", "{name: A, type: integer, start: 1, max: AMax}", "7:49: there is no feature \"AMax\""),
    Feature("MaxOfAnotherType", "{name: A, type: integer, start: 1, max: B}\n      - {name: B, type: float, start: 1}",
            "7:49: \"B\" cannot be a bound"),
    Feature("Increment", "{name: A, type: integer, start: 1, increment: 0}",
            "7:55: \"increment\" has to be greater than 0"),
    Feature("Scale", "{name: A, type: float, start: 1, scale: 0}", "7:49: \"scale\" cannot be 0"),
    Feature("OffsetIsNoNumber", "{name: A, type: float, start: 1, offset: x}",
            "7:50: \"offset\" has to be a number, not \"x\""),
    Feature("Representation", "{name: A, type: float, start: 1, representation: log}",
            "7:58: \"representation\" has to be"),
    Feature("Visibility", "{name: A, type: float, start: 1, visibility: all}", "7:54: \"visibility\" has to be one of"),
    Feature("MaxLength", "{name: A, type: string, start: x, maxLength: 9999}",
            "7:54: \"maxLength\" has to be a whole number"),
    Feature("NoEntries", "{name: A, type: enumeration, start: X}", "7:9: a feature needs the key \"entries\""),
    Feature("EmptyEntries", "{name: A, type: enumeration, entries: {}, get: X}", "7:47: \"entries\" needs an entry"),
    Feature("EntriesAreAWord", "{name: A, type: enumeration, entries: X, get: X}",
            "7:47: \"entries\" has to be a list"),
    Feature("EntryTwice", "{name: A, type: enumeration, get: X, entries: [{name: B, wire: 1}, {name: B, wire: 2}]}",
            "7:83: there is an entry \"B\" already"),
    Feature("EntryName", "{name: A, type: enumeration, get: X, entries: {1st: 1}}", "7:56: \"1st\" is no name"),
    Feature("EntryWithoutWire", "{name: A, type: enumeration, get: X, entries: [{name: B}]}",
            "7:56: an entry needs the key \"wire\""),
    Feature("WireTwice", "{name: A, type: enumeration, get: X, entries: {B: 1, D: 1}}",
            "7:62: the camera has \"1\" for another entry, too"),
    Feature("WireThatNoAnswerCanBe", "{name: A, type: enumeration, get: X, entries: {B: 'b ', D: d}}",
            "7:56: blanks at the ends of \"b \" count only where the answer has {value:raw}"),
    Feature("WireIsNoNumber", "{name: A, type: enumeration, set: 'X{value:d}', entries: {B: one}}",
            "7:67: what the camera has for \"B\" has to be a whole number"),
    Feature("OnAndOffTheSame", "{name: A, type: boolean, get: X, on: Z, off: Z}",
            "7:46: the camera has \"Z\" for another entry, too"),
    Feature("StartIsNoValue", "{name: A, type: boolean, start: 1}", "7:41: \"1\" is no value of the feature"),
    Feature("StartOutOfRange", "{name: A, type: integer, start: 9, max: 8}",
            "7:41: \"9\" is not from \"min\" to \"max\""),
    Feature("StartAndGet", "{name: A, type: integer, start: 9, get: X}",
            "7:41: \"start\" is for what the camera cannot tell"),
    Feature("ConstantAndSet", "{name: A, type: integer, constant: 9, set: 'X{value}'}",
            "7:44: with \"constant\" there can be none of the keys"),
    Feature("PollWithoutGet", "{name: A, type: integer, start: 9, pollMs: 100}",
            "7:52: \"pollMs\" needs the key \"get\""),
    Feature("ChangesIsNoList", "{name: A, type: integer, start: 9, changes: B}", "7:53: \"changes\" has to be a list"),
    Feature("ChangesWhatIsNotThere", "{name: A, type: integer, start: 9, changes: [B]}",
            "7:54: there is no feature \"B\""),
    Feature("ConditionOnNothing", "{name: A, type: integer, start: 9, lockedIf: {B: 1}}",
            "7:55: there is no feature \"B\""),
    Feature("ConditionOnItself", "{name: A, type: integer, start: 9, lockedIf: {A: 1}}",
            "7:55: \"A\" cannot be a condition"),
    Feature("ConditionWithoutValue",
            "{name: A, type: integer, start: 9, availableIf: {B: 1}}\n      - {name: B, type: boolean, start: true}",
            "7:61: \"1\" is no value of \"B\""),
    Feature("ConditionIsAWord", "{name: A, type: integer, start: 9, lockedIf: B}",
            "7:54: \"lockedIf\" has to be features with a value each"),
};

class CameraFileError : public testing::TestWithParam<Row> {};

TEST_P(CameraFileError, HasLineColumnAndReason) {
  EXPECT_THAT(GetErrors(GetParam().text), testing::Contains(StartsWith(GetParam().error)));
}

const auto kNameOf = [](const testing::TestParamInfo<Row>& aInfo) { return std::string(aInfo.param.name); };
INSTANTIATE_TEST_SUITE_P(File, CameraFileError, testing::ValuesIn(kFileRows), kNameOf);
INSTANTIATE_TEST_SUITE_P(Protocol, CameraFileError, testing::ValuesIn(kProtocolRows), kNameOf);
INSTANTIATE_TEST_SUITE_P(Feature, CameraFileError, testing::ValuesIn(kFeatureRows), kNameOf);

TEST(CameraFileErrors, OfBinaryFiles_AreToldToo) {
  const std::string text = "cameraFile: 1\ncamera: {vendor: V, model: M}\nprotocol: {data: binary}\n"
                           "categories:\n  - name: C\n    features:\n"
                           "      - {name: A, type: integer, get: 01, getAnswer: '02 {value}', set: zz, setAnswer: ~}\n"
                           "      - {name: B, type: integer, get: 01}\n"
                           "      - {name: D, type: string, get: 01, getAnswer: '02 {value}'}\n"
                           "      - {name: E, type: integer, get: '', getAnswer: '02 {value:u8}'}\n"
                           "      - {name: F, type: command, execute: 01}\n"
                           "      - {name: G, type: string, get: 01, getAnswer: '{length} {value}'}\n"
                           "      - {name: H, type: string, get: 01, getAnswer: '{value} {length:u8}'}\n";

  EXPECT_THAT(GetErrors(text),
              ElementsAre(HasSubstr("7:54: \"getAnswer\": in binary data {value} needs a format"),
                          HasSubstr("7:73: \"set\": \"zz\" is no pair of hexadecimal digits"),
                          HasSubstr("8:39: \"get\" needs the key \"getAnswer\""),
                          HasSubstr("9:53: \"getAnswer\": an answer of any length has to have a {length}"),
                          HasSubstr("10:39: \"get\": a command has to have bytes"),
                          HasSubstr("11:43: \"execute\" needs the key \"executeAnswer\""),
                          HasSubstr("12:53: \"getAnswer\": {check} and {length} need the format"),
                          HasSubstr("13:53: \"getAnswer\": an answer of any length has to have a {length} in front")));
}

TEST(CameraFileErrors, OfOneFile_AreAllToldInTheirOrder) {
  std::string all = "cameraFile: 7\ncamera: {vendor: V}\nprotocol: {echo: 1, prompt: '\\q'}\ncategories:\n"
                    "  - name: C\n    features:\n";
  std::vector<std::string> starts = {"1:13:", "2:9:", "3:11:", "3:18:", "3:29:"};
  std::size_t line = 7;
  for (const char* const feature :
       {"{name: A, type: integer, max: NotThere, start: 1}", "{name: B, type: integer, start: x}",
        "{name: D, type: string, get: '{E}'}", "{name: A, type: command, execute: X, executeAnswer: ~}"})
    all += "      - " + std::string(feature) + "\n";
  for (const char* const column : {":39:", ":41:", ":38:", ":16:"})
    starts.push_back(std::to_string(line++) + column);

  const std::vector<std::string> errors = GetErrors(all);

  ASSERT_EQ(errors.size(), starts.size()) << testing::PrintToString(errors);
  for (std::size_t i = 0; i < starts.size(); ++i)
    EXPECT_THAT(errors[i], StartsWith(starts[i]));
}

TEST(CameraFileErrors, BeyondAHundred_AreCutShort) {
  std::string features;
  for (int i = 0; i < 150; ++i)
    features += "      - {name: F" + std::to_string(i) + ", type: integer}\n";

  const std::vector<std::string> errors = GetErrors(WithFeatures(features));

  ASSERT_EQ(errors.size(), 101U);
  EXPECT_THAT(errors.back(), HasSubstr("and more"));
}

TEST(CameraFileErrors, TooMuch_IsRefused) {
  std::string features;
  for (int i = 0; i < 2049; ++i)
    features += "      - {name: F" + std::to_string(i) + ", type: integer, start: 1, changes: all}\n";
  std::string wide;
  for (int i = 0; i < 300; ++i)
    wide += "      - {name: F" + std::to_string(i) + ", type: integer, start: 1, changes: all}\n";
  const std::string longText(5000, 'x');

  EXPECT_THAT(GetErrors(WithFeatures(features)), testing::Contains(HasSubstr("\"features\" has more than 2048 items")));
  EXPECT_THAT(GetErrors(WithFeatures(wide)), ElementsAre(HasSubstr("change more than 65536 others in all")));
  EXPECT_THAT(GetErrors(WithFeatures("      - {name: A, type: integer, get: " + longText + "}\n")),
              ElementsAre(HasSubstr("the template has more than 1024 bytes")));
  EXPECT_THAT(GetErrors(WithFeatures("      - {name: A, type: integer, start: 1, tooltip: " + longText + "}\n")),
              ElementsAre(HasSubstr("\"tooltip\" has more than 4096 bytes")));
}

TEST(CameraFileReader, Templates_AreWholeMessages) {
  const FileModel model = Read(WithFeatures("      - {name: A, type: integer, get: 'A?', set: 'A={value:hex2}'}\n"));

  const FileFeature& feature = model.features.at(0);
  EXPECT_EQ(GetEnding(*feature.get), "A?\r");
  EXPECT_EQ(feature.getAnswer.size(), 2U);
  EXPECT_EQ(GetEnding(feature.getAnswer), "\r");
  EXPECT_EQ(GetEnding(*feature.setAnswer), "OK\r");
  EXPECT_EQ(feature.minimum->whole, 0);
  EXPECT_EQ(feature.maximum->whole, 255); // What two digits hold.
  EXPECT_TRUE(feature.isStreamable);
}

TEST(CameraFileReader, WiresWithBlanks_AreGoodWhereTheAnswerIsRaw) {
  const FileModel model = Read(WithFeatures(
      "      - {name: A, type: enumeration, get: X, getAnswer: '{value:raw}', entries: {B: 'b ', D: b}}\n"));

  EXPECT_EQ(model.features.at(0).entries.size(), 2U);
}

TEST(CameraFileReader, TheFormatLimitsWhatCanBeSet_AfterScaling) {
  const FileModel model =
      Read(WithFeatures("      - {name: A, type: float, set: 'A={value:hex2}', scale: -0.5, offset: 10}\n"));

  EXPECT_DOUBLE_EQ(model.features.at(0).minimum->number, -117.5);
  EXPECT_DOUBLE_EQ(model.features.at(0).maximum->number, 10);
}

TEST(CameraFile, Load_TellsWhatCannotBeRead) {
  CameraFile file;
  KrStringList errors;

  EXPECT_EQ(CameraFile::Load("/nowhere/camera.yml", file, errors), KrResult::Code::NotFound);
  EXPECT_TRUE(errors.IsEmpty());
}

TEST(CameraFile, Load_ListsTheMistakes) {
  const TemporaryFolder folder;
  const std::string path = folder.GetFile("camera.yml");
  std::ofstream(path) << "cameraFile: 1\ncamera: 2\n";
  CameraFile file;
  KrStringList errors;

  const KrResult result = CameraFile::Load(path, file, errors);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("camera.yml has"));
  ASSERT_GE(errors.GetCount(), 3U);
  EXPECT_THAT(errors[0].ToUtf8(), StartsWith("1:1: a camera file needs the key"));
}

TEST(CameraFile, Load_RefusesAFileThatIsTooLong) {
  const TemporaryFolder folder;
  const std::string path = folder.GetFile("camera.yml");
  std::ofstream(path) << std::string(2 << 20, '#');
  CameraFile file;
  KrStringList errors;

  EXPECT_EQ(CameraFile::Load(path, file, errors), KrResult::Code::BadData);
  EXPECT_THAT(errors[0].ToUtf8(), HasSubstr("the file has more than 1048576 bytes"));
}

std::string ReadAll(const std::string& aPath) {
  std::ifstream stream(aPath);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(CameraFile, Examples_AreGood_AndStandInTheDocument) {
  const std::string document = ReadAll(KR_CAMERA_FILES "/camera-files.md");
  for (const char* const name : {"text-camera.yml", "binary-camera.yml"}) {
    const std::string path = std::string(KR_CAMERA_FILES "/camera-files/") + name;
    CameraFile file;
    KrStringList errors;
    const KrResult result = CameraFile::Load(path, file, errors);

    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_THAT(document, HasSubstr("```yaml\n" + ReadAll(path) + "```")) << name;
  }
}

} // namespace
} // namespace krcamerabridge
