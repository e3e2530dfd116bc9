// Camera files with many mistakes at once: each is told, however wrong the rest is.

#include "camerafile/camerafilereader.h"
#include "camerafile/doubledkeys.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace krcamerabridge {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// A line of a file, and the beginnings of its mistakes behind "line:", in their order.
struct Line {
  std::string text;
  std::vector<std::string> mistakes = {};
};

std::vector<std::string> GetErrors(const std::string& aText) {
  std::vector<std::string> errors;
  EXPECT_FALSE(ReadCameraFileText(aText, errors).has_value());
  return errors;
}

void ExpectMistakes(const std::vector<Line>& aLines) {
  std::string text;
  std::vector<std::string> starts;
  for (std::size_t i = 0; i < aLines.size(); ++i) {
    text += aLines[i].text + "\n";
    for (const std::string& mistake : aLines[i].mistakes)
      starts.push_back(std::to_string(i + 1) + ":" + mistake);
  }
  const std::vector<std::string> errors = GetErrors(text);
  for (std::size_t i = 0; i < std::max(errors.size(), starts.size()); ++i)
    EXPECT_THAT(i < errors.size() ? errors[i] : "(no further mistake)",
                StartsWith(i < starts.size() ? starts[i] : "-"));
}

const std::vector<Line> kEveryKind = {
    {"cameraFile: 7", {"13: \"cameraFile\" has to be a whole number from 1 to 1, not \"7\""}},
    {"camera: {vendor: V, vendor: \"\\0\"}",
     {"9: the camera needs the key \"model\"", "21: the key \"vendor\" is there twice",
      "29: the text is no valid UTF-8, or has a zero in it"}},
    {"kamera: 1 # M\xFCnchen",
     {"1: a camera file has no key \"kamera\"; is \"camera\" meant?", "14: the file is no UTF-8"}},
    {"? [no, word]", {"3: a key has to be a word"}},
    {": value"},
    {"~: value", {"1: a key has to be a word"}},
    {"protocol:"},
    {"  baudRate: fast", {"13: \"baudRate\" has to be a whole number"}},
    {"  baudRate: 9600", {"3: the key \"baudRate\" is there twice"}},
    {"  baudRate: slow", {"3: the key \"baudRate\" is there twice", "13: \"baudRate\" has to be a whole number"}},
    {"  data: words", {"9: \"data\" has to be one of text, binary; not \"words\""}},
    {"  echo: 1", {"9: \"echo\" has to be true or false, not \"1\""}},
    {"  answerEnd: \"\\r\""},
    {"  commandEnd: '{value}'", {"15: \"commandEnd\": the placeholder cannot stand here"}},
    {"  prompt: '\\q'", {"11: \"prompt\": a backslash has to be one of"}},
    {"  check: {kind: sum, write: u8}", {"17: \"kind\" has to be one of sum8", "29: \"write\" has to be a format"}},
    {"  setAnswer: OK"},
    {"  probe: Nobody", {"10: there is no feature \"Nobody\""}},
    {"  errors:"},
    {"    - {text: t}", {"7: an error needs the key \"answer\""}},
    {"    - {answer: E, codes: {one: a}}", {"27: the code \"one\" is no whole number"}},
    {"    - {answer: E, codes: {1: a}}", {"16: with \"codes\" the answer needs the placeholder {code}"}},
    {"  errors:", {"3: the key \"errors\" is there twice"}},
    {"    - {answer: 'F{code:text}'}", {"16: the placeholder {code} needs the format of a whole number"}},
    {"categories:"},
    {"  - name: 2nd", {"11: \"2nd\" is no name"}},
    {"    visibility: all", {"17: \"visibility\" has to be one of"}},
    {"    features:"},
    {"      - {type: integer, start: 1}", {"9: a feature needs the key \"name\""}},
    {"      - {name: Untyped, start: 1}", {"9: a feature needs the key \"type\""}},
    {"      - {name: Typed, type: int}", {"29: \"type\" has to be one of"}},
    {"      - {name: Unreached, type: integer}", {"9: a feature needs one of the keys \"get\""}},
    {"      - {name: Keys, type: string, start: a, min: 2}", {"51: a feature of the type string has no key \"min\""}},
    {"      - {name: Set, type: integer, set: S}", {"41: \"set\" needs the placeholder {value}"}},
    {"      - {name: Get, type: integer, get: G, getAnswer: 'x{value}{skip}'}", {"55: \"getAnswer\": what can have"}},
    {"      - {name: Alone, type: integer, start: 1, setAnswer: OK}", {"59: \"setAnswer\" needs the key \"set\""}},
    {"      - {name: Format, type: integer, set: '{value:hexx}'}",
     {"44: \"set\": the placeholder {value:hexx} has no"}},
    {"      - {name: Other, type: integer, set: '{value}{Gone}'}", {"43: there is no feature \"Gone\""}},
    {"      - {name: Bounds, type: float, start: 2, min: 2, max: 1}",
     {"44: \"2\" is not from \"min\" to \"max\"", "60: \"max\" is less than \"min\""}},
    {"      - {name: Bound, type: float, start: 2, min: Nothing}", {"51: there is no feature \"Nothing\""}},
    {"      - {name: Start, type: boolean, start: maybe}", {"45: \"maybe\" is no value of the feature"}},
    {"      - {name: Scale, type: float, start: 1, scale: 0}", {"53: \"scale\" cannot be 0"}},
    {"      - {name: Poll, type: integer, start: 1, pollMs: 100}", {"55: \"pollMs\" needs the key \"get\""}},
    {"      - {name: Entries, type: enumeration, get: X, entries: {1st: a, B: b, D: b}}",
     {"62: \"1st\" is no name", "76: the camera has \"b\" for another entry, too"}},
    {"      - {name: Changes, type: integer, start: 9, changes: [Gone]}", {"60: there is no feature \"Gone\""}},
    {"      - {name: If, type: integer, start: 9, lockedIf: {Start: 2}}", {"56: \"Start\" cannot be a condition"}},
    {"      - {name: Twice, type: integer, start: 9, name: '3rd'}",
     {"48: the key \"name\" is there twice", "54: \"3rd\" is no name"}},
    {"      - {name: Scale, type: integer, start: 9}", {"16: the name \"Scale\" is used in line 42 already"}},
    {"    features:", {"5: the key \"features\" is there twice"}},
    {"      - {name: Late, type: float, start: 1, visibility: no, max: Bounds}",
     {"57: \"visibility\" has to be one of"}},
};

TEST(CameraFileMistakes, OfEveryKindAtOnce_AreAllToldAtTheirPlaces) {
  ExpectMistakes(kEveryKind);
}

TEST(CameraFileMistakes, BeforeATextThatIsNoYaml_AreToldWithIt) {
  ExpectMistakes({{"cameraFile: 2", {"13: \"cameraFile\" has to be"}},
                  {"cameraFile: 1", {"1: the key \"cameraFile\" is there twice"}},
                  {"protocol: {answerEnd: x, echo: 1}", {"32: \"echo\" has to be true or false"}},
                  {"categories:"},
                  {"  - features:"},
                  {"    - {name: A, type: integer, start: x}", {"39: \"x\" is no value of the feature"}},
                  {"    name: C"},
                  {"    - ]", {"5: end of map not found"}}});
}

TEST(CameraFileMistakes, BeforeQuotationMarksThatAreNotClosed_AreToldWithThem) {
  for (const char* const value : {"\"\\\" it's", "'it''s \" one"})
    ExpectMistakes({{"cameraFile: 2 # \xC3\xA4", {"13: \"cameraFile\" has to be"}},
                    {"camera: {vendor: \"V\\\"\", model: 'M''s\"'}"},
                    {"protocol: {answerEnd: x}"},
                    {"categories:"},
                    {std::string("  - name: ") + value, {"11: the quotation marks are not closed"}},
                    {"    features: [{name: A, type: integer, start: x}]"}});
}

// Each text ends where the parser gives up. What may stand behind that is not said to be missing.
TEST(CameraFileMistakes, OfWhatTheFileMayHaveBehindTheError_AreNotMadeUp) {
  const std::string head = "cameraFile: 1\n";
  const std::string protocol = "protocol: {answerEnd: x, setAnswer: OK}\n";
  const std::string features = "categories:\n  - name: C\n    features:\n";
  const std::string good = "    - {name: A, type: integer, max: Later, lockedIf: {Later: 1}, start: 1}\n";
  for (const std::string& text : std::vector<std::string>{
           "[", head + "camera: {vendor: ]", head + "protocol: {check: {write: u16be}, prompt: 'zz', ]",
           head + features + good + "protocol: ]", head + protocol + features + good + "    - {name: B, ]",
           head + protocol + features + good + "    - {name: B, type: boolean, on: 0, ]",
           head + protocol + features + good + "    - {name: Later, type: enumeration, start: Z, ]",
           head + protocol + features + "    - {name: B, type: enumeration, get: X, entries: { ]",
           head + protocol + features + "    - {name: B, type: integer, getAnswer: '{value}', pollMs: 100, ]",
           head + features + "    - {name: B, type: integer, set: '{value}'}\n    - ]",
           head + protocol + features + good + "---\nanother: 1\n"}) {
    const std::vector<std::string> errors = GetErrors(text);
    EXPECT_EQ(errors.size(), 1u) << text << testing::PrintToString(errors);
  }
}

TEST(CameraFileMistakes, OfAnAliasedValue_AreToldOnce) {
  EXPECT_THAT(GetErrors("cameraFile: 1\ncamera: {vendor: V, model: M}\nprotocol: {answerEnd: x}\ncategories:\n"
                        "  - {name: C, features: [{name: A, type: integer, start: 1, lockedIf: &a [1]},\n"
                        "      {name: B, type: integer, start: 1, lockedIf: *a}]}\n"),
              ElementsAre(StartsWith("5:71: \"lockedIf\" has to be features")));
}

TEST(CameraFileMistakes, OfManyDoubledKeys_AreAllToldAndTheFirstOfTheirValuesLookedAt) {
  std::string text = "cameraFile: 1\ncamera: {vendor: V, model: M}\nprotocol:\n  answerEnd: x\n";
  for (std::size_t i = 0; i < 30; ++i)
    text += "  answerMs: 0\n";
  text += "categories: [{name: C, features: [{name: A, type: integer, start: 1}]}]\n";

  const std::vector<std::string> errors = GetErrors(text);

  EXPECT_EQ(errors.size(), 29 + 1 + kMostDoubledValues);
  EXPECT_THAT(errors.back(), HasSubstr("is there twice"));
}

} // namespace
} // namespace krcamerabridge
