#include "browser/descriptionctrl.h"
#include "windowwait.h"

#include <QAccessible>
#include <QFontInfo>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QVBoxLayout>

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

using krgui::DescriptionCtrl;
using testing::ElementsAre;

/// A piece of the pane's text with one format.
struct TextRun {
  std::string text;
  bool isBold = false;
  int pixelHeight = 0; ///< 0 for the default height.

  friend bool operator==(const TextRun&, const TextRun&) = default;
  friend void PrintTo(const TextRun& aRun, std::ostream* aStream) {
    *aStream << '"' << aRun.text << "\" " << (aRun.isBold ? "bold " : "") << aRun.pixelHeight;
  }
};

/// Each line's runs, line after line.
std::vector<TextRun> GetRuns(const DescriptionCtrl& aPane) {
  std::vector<TextRun> runs;
  for (QTextBlock block = aPane.document()->begin(); block.isValid(); block = block.next()) {
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      const QTextCharFormat format = part.fragment().charFormat();
      runs.push_back({part.fragment().text().toStdString(), format.fontWeight() == QFont::Bold,
                      format.intProperty(QTextFormat::FontPixelSize)});
    }
  }
  return runs;
}

class DescriptionCtrls : public testing::Test {
protected:
  DescriptionCtrls() {
    mWindow.resize(300, 200);
    mWindow.setFont(MakeFont(10));
    mPane.setGeometry(0, 0, 300, 150);
  }

  static QFont MakeFont(int aPixels) {
    QFont font("DejaVu Sans");
    font.setPixelSize(aPixels);
    return font;
  }

  void Show() {
    mWindow.show();
    mWindow.activateWindow();
    ASSERT_TRUE(krtest::AwaitActive(&mWindow));
  }

  QWidget mWindow;
  DescriptionCtrl& mPane = *new DescriptionCtrl(&mWindow);
};

} // namespace

TEST_F(DescriptionCtrls, Markup_ShowsItsRuns) {
  struct Row {
    const char* name;
    const char* text;
    std::vector<TextRun> expected;
  };
  const Row rows[] = {
      {"plain", "text", {{"text"}}},
      {"an end met in normal mode stays", "a<b>b</b>c</b>d", {{"a"}, {"b", true}, {"c</b>d"}}},
      {"nothing nests", "<b>a<b>b</b>c", {{"a<b>b", true}, {"c"}}},
      {"a missing end leaves the rest bold", "a<b>b", {{"a"}, {"b", true}}},
      {"line ends stay", "a\n<b>b\nc</b>", {{"a"}, {"b", true}, {"c", true}}},
      {"other tags are text", "<i>a</i> &lt; <B>b</B><br>", {{"<i>a</i> &lt; <B>b</B><br>"}}},
      {"nothing", "", {}},
      {"tags alone", "<b></b><b>", {}},
  };
  for (const Row& row : rows) {
    mPane.Clear();

    mPane.AddMarkup(row.text);

    EXPECT_EQ(GetRuns(mPane), row.expected) << row.name;
  }
}

TEST_F(DescriptionCtrls, EachWayToAppend_HasItsFormat) {
  mPane.AddTitle("Gain\n");
  mPane.AddBold("Unit: ");
  mPane.AddText("dB");
  mPane.AddMarkup(" <b>x</b>");

  EXPECT_THAT(GetRuns(mPane),
              ElementsAre(TextRun{"Gain", true, 13}, TextRun{"Unit: ", true}, TextRun{"dB "}, TextRun{"x", true}));
  EXPECT_EQ(mPane.toPlainText(), "Gain\nUnit: dB x");
}

TEST_F(DescriptionCtrls, Title_IsOnePointThreeTimesAsHighRounded) {
  struct Row {
    int height;
    int title;
  };
  for (const Row& row : {Row{9, 12}, Row{10, 13}, Row{11, 14}, Row{12, 16}, Row{15, 20}, Row{24, 31}}) {
    mWindow.setFont(MakeFont(row.height));
    mPane.Clear();

    mPane.AddTitle("Gain");

    EXPECT_THAT(GetRuns(mPane), ElementsAre(TextRun{"Gain", true, row.title})) << row.height;
  }
}

TEST_F(DescriptionCtrls, ChangedFont_ScalesTitlesAgainAndNothingElse) {
  mPane.AddTitle("Gain\n");
  mPane.AddText("text");

  mWindow.setFont(MakeFont(20));

  EXPECT_THAT(GetRuns(mPane), ElementsAre(TextRun{"Gain", true, 26}, TextRun{"text"}));
  EXPECT_EQ(QFontInfo(mPane.document()->defaultFont()).pixelSize(), 20);
}

TEST_F(DescriptionCtrls, ChangedPalette_ColoursTheText) {
  mPane.AddTitle("Gain\n");
  mPane.AddMarkup("some <b>text</b>");

  QPalette palette = mWindow.palette();
  palette.setColor(QPalette::Text, QColor(0x12, 0x34, 0x56));
  mWindow.setPalette(palette);

  EXPECT_EQ(mPane.palette().color(QPalette::Text), QColor(0x12, 0x34, 0x56));
  for (QTextBlock block = mPane.document()->begin(); block.isValid(); block = block.next()) {
    for (auto part = block.begin(); !part.atEnd(); ++part)
      EXPECT_FALSE(part.fragment().charFormat().hasProperty(QTextFormat::ForegroundBrush));
  }
}

TEST_F(DescriptionCtrls, Clear_EmptiesItAndBeginsAnew) {
  mPane.AddTitle("Gain");
  mPane.Clear();
  EXPECT_EQ(mPane.toPlainText(), "");

  mPane.AddText("text");

  EXPECT_THAT(GetRuns(mPane), ElementsAre(TextRun{"text"}));
}

TEST_F(DescriptionCtrls, DevicesText_IsNoMarkup) {
  struct Row {
    const char* name;
    void (*add)(DescriptionCtrl& aPane, const KrString& aText);
  };
  const Row rows[] = {
      {"title", [](DescriptionCtrl& aPane, const KrString& aText) { aPane.AddTitle(aText); }},
      {"bold", [](DescriptionCtrl& aPane, const KrString& aText) { aPane.AddBold(aText); }},
      {"text", [](DescriptionCtrl& aPane, const KrString& aText) { aPane.AddText(aText); }},
  };
  for (const Row& row : rows) {
    mPane.Clear();

    row.add(mPane, "<b>x</b><a href=\"http://h\">y</a>&amp;<img src=\"f\">");

    EXPECT_EQ(mPane.toPlainText(), "<b>x</b><a href=\"http://h\">y</a>&amp;<img src=\"f\">") << row.name;
  }
}

TEST_F(DescriptionCtrls, AnyLineEnd_EndsALine) {
  mPane.AddText("a\nb\r\nc");

  EXPECT_EQ(mPane.document()->blockCount(), 3);
  EXPECT_EQ(mPane.toPlainText(), "a\nb\nc");
}

TEST_F(DescriptionCtrls, LongTextOfManyRuns_IsWhole) {
  std::string markup;
  std::string text;
  for (int i = 0; i < 1500; ++i) {
    markup += "<b>a</b>b";
    text += "ab";
  }
  mPane.AddMarkup(KrString(markup));
  EXPECT_EQ(mPane.toPlainText().toStdString(), text);

  mPane.Clear();
  mPane.AddText(KrString(std::string(10000, 'x')));
  EXPECT_EQ(mPane.toPlainText().size(), 10000);
}

TEST_F(DescriptionCtrls, BytesThatAreNoText_AreShownAsReplacements) {
  mPane.AddText(KrString(std::string("a\xFF"
                                     "b")));

  EXPECT_EQ(mPane.toPlainText(), QString("a") + QChar(0xFFFD) + "b");
}

TEST_F(DescriptionCtrls, RightToLeftText_RunsFromTheRight) {
  mPane.AddText("\u05D4\u05D2\u05D1\u05E8\n");
  mPane.AddText("Gain");

  EXPECT_EQ(mPane.document()->firstBlock().textDirection(), Qt::RightToLeft);
  EXPECT_EQ(mPane.document()->lastBlock().textDirection(), Qt::LeftToRight);
}

TEST_F(DescriptionCtrls, AfterEachFilling_TheBeginningIsShown) {
  Show();
  const KrString lines(std::string(500, '\n'));
  for (int i = 0; i < 2; ++i) {
    mPane.Clear();
    mPane.AddTitle("Gain");
    mPane.AddText(lines);
    ASSERT_GT(mPane.verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(mPane.verticalScrollBar()->value(), 0);
    EXPECT_EQ(mPane.textCursor().position(), 0);

    mPane.verticalScrollBar()->setValue(mPane.verticalScrollBar()->maximum());
  }
}

TEST_F(DescriptionCtrls, Text_IsSelectedByKeyboardButNotChanged) {
  mPane.AddText("Gain of the sensor");
  Show();
  mPane.setFocus();

  QTest::keyClicks(&mPane, "x");
  QTest::keyClick(&mPane, Qt::Key_Delete);
  QTest::keyClick(&mPane, Qt::Key_Right, Qt::ShiftModifier);
  QTest::keyClick(&mPane, Qt::Key_Right, Qt::ShiftModifier);

  EXPECT_EQ(mPane.textCursor().selectedText(), "Ga");
  EXPECT_EQ(mPane.toPlainText(), "Gain of the sensor");
  QTest::keyClick(&mPane, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(mPane.textCursor().selectedText(), "Gain of the sensor");
}

TEST_F(DescriptionCtrls, Text_IsSelectedByMouse) {
  mPane.AddText("Gain");
  Show();

  QTest::mouseDClick(mPane.viewport(), Qt::LeftButton, {}, mPane.cursorRect().center() + QPoint(5, 0));

  EXPECT_EQ(mPane.textCursor().selectedText(), "Gain");
}

TEST_F(DescriptionCtrls, Tab_GoesOn) {
  auto* const next = new QLineEdit(&mWindow);
  next->move(0, 160);
  QWidget::setTabOrder(&mPane, next);
  mPane.AddText("Gain");
  Show();
  mPane.setFocus();

  QTest::keyClick(&mPane, Qt::Key_Tab);
  EXPECT_TRUE(next->hasFocus());

  QTest::keyClick(next, Qt::Key_Tab, Qt::ShiftModifier);
  EXPECT_TRUE(mPane.hasFocus());
}

TEST_F(DescriptionCtrls, AssistiveTechnology_HearsNameAndText) {
  mPane.AddText("Gain of the sensor");

  QAccessibleInterface* const pane = QAccessible::queryAccessibleInterface(&mPane);

  EXPECT_EQ(pane->text(QAccessible::Name), "Description");
  ASSERT_NE(pane->textInterface(), nullptr);
  EXPECT_EQ(pane->textInterface()->text(0, pane->textInterface()->characterCount()), "Gain of the sensor");
  EXPECT_TRUE(pane->state().readOnly);
}
