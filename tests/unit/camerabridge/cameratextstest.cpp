// What the camera bridge manager says of templates, cameras, descriptions, bridges and camera files.

#include "logic/camerabridge/cameratexts.h"

#include <gtest/gtest.h>

#include <limits>

namespace krgui {

namespace {

struct Row {
  const char* whole;
  const char* shown;
};

} // namespace

TEST(CameraTexts, Template_LosesTwoPartsAndGetsBlanks) {
  const Row rows[] = {
      {"A#B#C#D", "C D"},
      {"A#B#C", "C"},
      {"A#B", "B"},
      {"A", "A"},
      {"", ""},
      {"#", " "},
      {"#A", " A"},
      {"A#", ""},
      {"A##C", " C"},
      {"A#B#", ""},
      {"A#B##D", " D"},
      {"A#B#C#D#E", "C D E"},
      {"#A#B", "B"},
      {"a b#c d#e f#g", "e f g"},
      {"Dir#libcl.so#KrGUI#Camera", "KrGUI Camera"},
  };
  for (const Row& row : rows)
    EXPECT_STREQ(ShortenTemplate(row.whole).CStr(), row.shown) << row.whole;
}

TEST(CameraTexts, CameraID_LosesWhatIsBeforeItsSecondHash) {
  const Row rows[] = {
      {"A#B#C#D", "C D"}, {"A#B#C", "C"},  {"A#B", "A B"},         {"A", "A"},   {"", ""}, {"#", " "}, {"#A#B", " A B"},
      {"A##", ""},        {"#A#B#C", "C"}, {"A#B#C#D#E", "C D E"}, {"A#", "A "},
  };
  for (const Row& row : rows)
    EXPECT_STREQ(ShortenCameraID(row.whole).CStr(), row.shown) << row.whole;
}

TEST(CameraTexts, XMLID_LosesWhatIsBeforeItsSecondAt) {
  const Row rows[] = {
      {"x@y@z", "z"},  {"x@y", "x@y"}, {"x", "x"},           {"", ""}, {"x@y@z@w", "z@w"}, {"@y@z", "@y@z"},
      {"@x@y@z", "z"}, {"x@@", ""},    {"a#b@c@d#e", "d#e"},
  };
  for (const Row& row : rows)
    EXPECT_STREQ(ShortenXMLID(row.whole).CStr(), row.shown) << row.whole;
}

TEST(CameraTexts, Status_CountsTheParameters) {
  EXPECT_STREQ(FormatBridgeStatus(std::nullopt).CStr(), "Parameters not available");
  EXPECT_STREQ(FormatBridgeStatus(0).CStr(), "GenApi interface containing 0 parameters available");
  EXPECT_STREQ(FormatBridgeStatus(1).CStr(), "GenApi interface containing 1 parameters available");
  EXPECT_STREQ(FormatBridgeStatus(12345).CStr(), "GenApi interface containing 12345 parameters available");
}

TEST(CameraTexts, State_SaysWhatIsWrongBeforeItsReason) {
  EXPECT_STREQ(FormatCameraState({}).CStr(), "");
  EXPECT_STREQ(FormatCameraState({KrResult::Code::TimeLimitExceeded, "Serial0 of Grabber: no answer."}).CStr(),
               "The camera does not answer. Serial0 of Grabber: no answer.");
  EXPECT_STREQ(FormatCameraState({KrResult::Code::ConnectionLost, "Grabber has gone."}).CStr(),
               "The connection is lost. Grabber has gone.");
}

TEST(CameraTexts, CameraFileError_ListsTheMistakes) {
  KrStringList mistakes;
  EXPECT_STREQ(FormatCameraFileError(mistakes).CStr(), "Error loading Tolvan Camera File.");

  mistakes.Add("1:2: no good");
  EXPECT_STREQ(FormatCameraFileError(mistakes).CStr(), "Error loading Tolvan Camera File:\r\n1:2: no good");

  mistakes.Add("3:4: no better");
  EXPECT_STREQ(FormatCameraFileError(mistakes).CStr(),
               "Error loading Tolvan Camera File:\r\n1:2: no good\r\n3:4: no better");
}

} // namespace krgui
