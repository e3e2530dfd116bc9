// Texts that are longer than a row keeps, and names that are neither short nor plain, on their way to the editors.

#include "editorsfixture.h"
#include "logic/browser/gridtools.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace krgui {

namespace {

constexpr std::uint64_t kTextAddress = 0x1000;

// A change of direction, a sign that would underline a letter, and as many letters as a name may have.
const std::string kCommandName = "Do\xE2\x80\xAEit&" + std::string(1000, 'n');
const std::string kCommandInXML = "Do\xE2\x80\xAEit&amp;" + std::string(1000, 'n');

std::string MakeLongTextNodes() {
  return "<Category Name=\"Root\"><pFeature>Features</pFeature></Category>\n"
         "<Category Name=\"Features\"><pFeature>Text</pFeature><pFeature>" +
         kCommandInXML +
         "</pFeature></Category>\n"
         "<StringReg Name=\"Text\"><Address>0x1000</Address><Length>70000</Length><AccessMode>RW</AccessMode>"
         "<pPort>Device</pPort></StringReg>\n"
         "<Command Name=\"" +
         kCommandInXML + "\"><pValue>CommandReg</pValue><CommandValue>1</CommandValue></Command>\n" +
         MakeEditorRegister("CommandReg", 0x100, 4);
}

class EditorsOfLongTexts : public EditorsTest {
protected:
  EditorsOfLongTexts() : EditorsTest(MakeLongTextNodes()) {}

  /// The device has another text, and the row hears of it.
  void SetText(std::size_t aLength, char aLetter) {
    const std::string text = std::string(aLength, aLetter) + '\0';
    ASSERT_TRUE(camera.memory.Write(kTextAddress, text.data(), text.size(), 1000).IsOK());
    camera.array->InvalidateCache();
    Node("Text").OnParameterUpdate(Node("Text").GetParameter());
    Pump();
    (void)camera.port.TakeRecords();
  }
};

} // namespace

TEST_F(EditorsOfLongTexts, TextWhoseBeginningIsShown_IsEditedWhole) {
  SetText(4097, 'x');

  Enter("Text");

  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->text(), QString(4097, 'x'));
  EXPECT_EQ(Value("Text"), std::string(4096, 'x') + "… (4097 bytes)");
  TextBox()->setCursorPosition(0);
  QTest::keyClick(TextBox(), Qt::Key_Delete);
  QTest::keyClick(TextBox(), Qt::Key_Return);
  Pump();
  EXPECT_EQ(camera.Peek(kTextAddress, 4096), std::vector<std::uint8_t>(4096, 'x'));
  EXPECT_EQ(camera.Peek(kTextAddress + 4096, 1), std::vector<std::uint8_t>(1, 0));
}

TEST_F(EditorsOfLongTexts, TextWhoseBeginningIsShown_IsFollowedByItsEditor) {
  SetText(5000, 'x');
  Select("Text");
  ASSERT_NE(TextBox(), nullptr);

  SetText(6000, 'y');

  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->text(), QString(6000, 'y'));
}

TEST_F(EditorsOfLongTexts, TextTooLongForALine_IsShownWithoutAnEditorAndSaysSo) {
  SetText(65'537, 'x');

  Enter("Text");

  EXPECT_EQ(TextBox(), nullptr);
  EXPECT_NE(GetTroubleText(Node("Text")).ToUtf8().find("too long to be edited"), std::string::npos);
  EXPECT_EQ(Value("Text"), std::string(4096, 'x') + "… (65537 bytes)");
  elsewhere->setFocus();
  Pump();
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsOfLongTexts, TextThatGrowsTooLong_TakesItsEditorAlongAndIsNotWritten) {
  SetText(10, 'x');
  Select("Text");
  ASSERT_NE(TextBox(), nullptr);

  SetText(65'537, 'y');
  EXPECT_EQ(TextBox(), nullptr);
  elsewhere->setFocus();
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_EQ(camera.Peek(kTextAddress, 5000), std::vector<std::uint8_t>(5000, 'y'));
}

TEST_F(EditorsOfLongTexts, TextThatGrowsTooLong_LeavesWhatTheUserTypes) {
  SetText(10, 'x');
  Enter("Text");
  ASSERT_NE(TextBox(), nullptr);
  TextBox()->selectAll();
  QTest::keyClicks(TextBox(), "new");

  SetText(65'537, 'y');
  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->text(), "new");
  QTest::keyClick(TextBox(), Qt::Key_Return);
  Pump();

  EXPECT_EQ(camera.Peek(kTextAddress, 4), (std::vector<std::uint8_t>{'n', 'e', 'w', 0}));
}

TEST_F(EditorsOfLongTexts, LongTextThatIsPasted_IsWrittenWhole) {
  SetText(10, 'x');
  Enter("Text");
  ASSERT_NE(TextBox(), nullptr);
  TextBox()->selectAll();
  TextBox()->insert(QString(5000, 'z'));

  QTest::keyClick(TextBox(), Qt::Key_Return);
  Pump();

  EXPECT_EQ(camera.Peek(kTextAddress, 5000), std::vector<std::uint8_t>(5000, 'z'));
  EXPECT_EQ(Value("Text"), std::string(4096, 'z') + "… (5000 bytes)");
}

TEST_F(EditorsOfLongTexts, NameOnAButton_IsPlainAndCut) {
  Select(kCommandName.c_str());

  ASSERT_NE(Button(), nullptr);
  EXPECT_EQ(Button()->text(), "Do it&&" + QString(249, 'n'));
  EXPECT_EQ(Button()->accessibleName(), "Do it&" + QString(249, 'n'));
}

} // namespace krgui
