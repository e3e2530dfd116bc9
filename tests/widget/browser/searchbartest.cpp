#include "krgui/genbrowsersearchbar.h"

#include "browser/genbrowserwnd.h"
#include "browser/gridcolours.h"
#include "browser/propertiesgrid.h"
#include "describedcamera.h"
#include "krgui/propertiesctrl.h"
#include "paintcounter.h"
#include "windowwait.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QShortcut>
#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace {

/// Their display names are others: "Shown " and the name backwards.
constexpr std::array kNames = {"Width", "Gain", "GainAuto", "PixelFormat", "DigitalGainSelector", "Gamma"};

std::string MakeNodes() {
  std::string nodes;
  int address = 0;
  for (const std::string name : kNames) {
    nodes += "<IntReg Name=\"" + name + "\"><DisplayName>Shown " + std::string(name.rbegin(), name.rend()) +
             "</DisplayName><Address>" + std::to_string(address) +
             "</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>\n";
    address += 8;
  }
  return nodes;
}

class SearchBars : public testing::Test {
protected:
  SearchBars() {
    mWindow.resize(400, 300);
    mGrid->setGeometry(0, 40, 400, 260);
    mBar->setGeometry(0, 0, 300, 30);
    FillGrid();
  }

  void FillGrid() {
    for (const char* name : kNames)
      mRows[name] = mGrid->AppendFeature(0, name, *mCamera.Get<KrGenParameter>(name));
  }

  void Show() {
    mWindow.show();
    mWindow.activateWindow();
    ASSERT_TRUE(krtest::AwaitActive(&mWindow));
    mBar->setFocus();
    ASSERT_TRUE(mField->hasFocus());
  }

  void Type(const char* aText) { QTest::keyClicks(mField, QString::fromUtf8(aText)); }
  void Press(Qt::Key aKey, Qt::KeyboardModifiers aModifiers = {}) { QTest::keyClick(mField, aKey, aModifiers); }

  /// The name of the selected row; empty for none.
  std::string GetSelected() {
    for (const auto& [name, row] : mRows) {
      if (row == mGrid->GetSelected())
        return name;
    }
    return {};
  }
  std::string GetResult() { return mBar->GetResultText().ToUtf8(); }
  std::string GetText() { return mBar->GetText().ToUtf8(); }

  /// Whether the grid shows a match.
  bool IsHighlighted() {
    const QRgb match = krgui::MakeGridColours(mGrid->palette()).match.rgb();
    const QImage picture = mGrid->grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (picture.pixel(x, y) == match)
          return true;
      }
    }
    return false;
  }

  DescribedCamera mCamera{MakeNodes()};
  QWidget mWindow;
  PropertiesCtrl* mGrid = new PropertiesCtrl(&mWindow);
  GenBrowserSearchBar* mBar = new GenBrowserSearchBar(nullptr, mGrid, &mWindow);
  QLineEdit* mField = mBar->findChild<QLineEdit*>();
  std::map<std::string, std::uint64_t> mRows;
};

} // namespace

TEST_F(SearchBars, Typing_SelectsAndHighlightsTheFirstMatch) {
  Show();
  EXPECT_FALSE(IsHighlighted());

  Type("gain");

  EXPECT_EQ(GetSelected(), "Gain");
  EXPECT_EQ(GetResult(), "Result 1 of 3");
  EXPECT_TRUE(IsHighlighted());
  EXPECT_TRUE(mField->hasFocus());
}

TEST_F(SearchBars, Enter_GoesThroughTheMatchesInListOrderAndRound) {
  Show();
  Type("gain");

  for (const auto& [name, result] :
       {std::pair("GainAuto", "Result 2 of 3"), std::pair("DigitalGainSelector", "Result 3 of 3"),
        std::pair("Gain", "Result 1 of 3")}) {
    Press(Qt::Key_Return);
    EXPECT_EQ(GetSelected(), name);
    EXPECT_EQ(GetResult(), result);
  }
  Press(Qt::Key_Enter, Qt::KeypadModifier);
  EXPECT_EQ(GetSelected(), "GainAuto") << "Enter of the keypad";
  Press(Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(GetSelected(), "DigitalGainSelector") << "whatever is held but Control";
}

TEST_F(SearchBars, PreviousOfTheFirst_IsTheLast) {
  mBar->SetText("gain");

  mBar->MoveToPreviousOccurence();

  EXPECT_EQ(GetSelected(), "DigitalGainSelector");
  EXPECT_EQ(GetResult(), "Result 3 of 3");
  mBar->MoveToNextOccurence();
  EXPECT_EQ(GetSelected(), "Gain");
}

TEST_F(SearchBars, FurtherTyping_SearchesFromTheFirstMatchAgain) {
  Show();
  Type("gai");
  Press(Qt::Key_Return);
  Press(Qt::Key_Return);
  EXPECT_EQ(GetSelected(), "DigitalGainSelector");

  Type("n");

  EXPECT_EQ(GetSelected(), "Gain");
  EXPECT_EQ(GetResult(), "Result 1 of 3");
}

TEST_F(SearchBars, Search_IsForcedOrMovesOnUntilTheTextIsEdited) {
  mBar->SetText("gain");
  mBar->Search(false);
  EXPECT_EQ(GetResult(), "Result 2 of 3");
  mBar->Search(false);
  EXPECT_EQ(GetResult(), "Result 3 of 3");

  mBar->Search(true);
  EXPECT_EQ(GetResult(), "Result 1 of 3");

  mBar->SetText("ga");
  EXPECT_EQ(GetResult(), "Result 1 of 4");
}

TEST_F(SearchBars, Case_DoesNotMatter) {
  for (const char* text : {"GAIN", "gain", "gAiN"}) {
    mBar->SetText(text);
    EXPECT_EQ(GetResult(), "Result 1 of 3") << text;
  }
}

TEST_F(SearchBars, NoMatch_SaysSoAndLeavesTheSelection) {
  Show();
  Type("width");
  ASSERT_EQ(GetSelected(), "Width");
  ASSERT_TRUE(IsHighlighted());

  Type("x");

  EXPECT_EQ(GetResult(), "No result found");
  EXPECT_EQ(GetSelected(), "Width");
  EXPECT_FALSE(IsHighlighted());
  Press(Qt::Key_Return);
  mBar->MoveToPreviousOccurence();
  EXPECT_EQ(GetResult(), "No result found");
}

TEST_F(SearchBars, EmptiedField_ClearsResultAndHighlight) {
  Show();
  Type("width");

  for (int i = 0; i < 5; ++i)
    Press(Qt::Key_Backspace);

  EXPECT_EQ(GetResult(), "");
  EXPECT_FALSE(IsHighlighted());
  EXPECT_EQ(GetSelected(), "Width");
  Press(Qt::Key_Return);
  mBar->MoveToNextOccurence();
  mBar->Search(false);
  EXPECT_EQ(GetResult(), "");
  EXPECT_EQ(GetSelected(), "Width");
}

TEST_F(SearchBars, EmptiedField_HasNoPreviousEither) {
  mBar->SetText("gain");
  mBar->SetText("");

  mBar->MoveToPreviousOccurence();

  EXPECT_EQ(GetResult(), "");
  EXPECT_EQ(GetSelected(), "Gain");
}

TEST_F(SearchBars, DisplayNames_AreNotSearchedWithoutABrowser) {
  mBar->SetText("Shown");

  EXPECT_EQ(GetResult(), "No result found");
}

TEST_F(SearchBars, BrowserThatShowsDisplayNames_HasThemSearched) {
  krgui::GenBrowserWnd browser([](KrGenParameter*) { return true; });
  KrPropertyList options;
  options.Add({"Names", "DisplayNames"});
  browser.LoadOptions(options);
  GenBrowserSearchBar bar(&browser, mGrid, &mWindow);

  bar.SetText("otua");
  EXPECT_EQ(bar.GetResultText(), "Result 1 of 1");
  EXPECT_EQ(GetSelected(), "GainAuto");

  bar.SetText("gainauto");
  EXPECT_EQ(bar.GetResultText(), "No result found");
}

TEST_F(SearchBars, Categories_AreNotSearched) {
  DescribedCamera camera("<Category Name=\"Root\"><pFeature>GainControl</pFeature></Category>"
                         "<Category Name=\"GainControl\"/>");
  mGrid->AppendCategory(0, "GainControl", *camera.array->GetCategory("GainControl"));

  mBar->SetText("gaincontrol");
  EXPECT_EQ(GetResult(), "No result found");

  mGrid->Clear();
}

TEST_F(SearchBars, LongText_IsSearchedByItsFirst255Characters) {
  static_assert(GenBrowserSearchBar::BUFFER_SIZE == 256);
  const std::string name(255, 'N');
  DescribedCamera camera("<IntReg Name=\"" + name +
                         "\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
                         "</IntReg>");
  mRows["long"] = mGrid->AppendFeature(0, name.c_str(), *camera.Get<KrGenParameter>(name.c_str()));

  mBar->SetText(KrString(name + std::string(45, 'x')));
  EXPECT_EQ(GetResult(), "Result 1 of 1");
  EXPECT_EQ(GetSelected(), "long");
  EXPECT_EQ(GetText().size(), 300U);

  mBar->SetText(KrString(name.substr(0, 254) + std::string(46, 'x')));
  EXPECT_EQ(GetResult(), "No result found");

  mBar->SetText(KrString(name.substr(0, 254) + "\U0001F4F7"));
  EXPECT_EQ(GetResult(), "Result 1 of 1") << "half a character is not searched for";
  mGrid->Clear();
}

TEST_F(SearchBars, ControlWithACharacter_IsDroppedButForTheClipboard) {
  Show();
  Type("gain");
  for (const Qt::Key key : {Qt::Key_A, Qt::Key_Z, Qt::Key_Y, Qt::Key_U, Qt::Key_B, Qt::Key_1, Qt::Key_Backspace,
                            Qt::Key_Return, Qt::Key_Space}) {
    Press(key, Qt::ControlModifier);

    EXPECT_EQ(GetText(), "gain") << key;
    EXPECT_FALSE(mField->hasSelectedText()) << key;
    EXPECT_EQ(GetResult(), "Result 1 of 3") << key;
  }
}

TEST_F(SearchBars, ClipboardKeys_Work) {
  Show();
  Type("gain");
  mField->setSelection(0, 2);

  Press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "ga");
  Press(Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(GetText(), "in");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "ga");
  mField->setCursorPosition(0);
  Press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(GetText(), "gain");
  EXPECT_EQ(GetResult(), "Result 1 of 3");
}

TEST_F(SearchBars, KeysThatTypeNothing_EditWithControl) {
  Show();
  Type("gain auto");

  Press(Qt::Key_Home);
  Press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(mField->cursorPosition(), 5);
  Press(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(mField->selectedText(), "auto");
}

TEST_F(SearchBars, ControlF_ReachesTheWindow) {
  int asked = 0;
  auto* const shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F), &mWindow);
  QObject::connect(shortcut, &QShortcut::activated, [&asked] { ++asked; });
  Show();
  Type("gain");

  Press(Qt::Key_F, Qt::ControlModifier);

  EXPECT_EQ(asked, 1);
  EXPECT_EQ(GetText(), "gain");
}

/// Notes the keys, but for Control's own, that come to a window from what is in it.
class KeyNotes : public QWidget {
public:
  std::vector<int> mKeys;

private:
  void keyPressEvent(QKeyEvent* aEvent) override {
    if (aEvent->key() != Qt::Key_Control)
      mKeys.push_back(aEvent->key());
  }
};

TEST_F(SearchBars, WindowAroundIt_HearsControlFButNeitherEnterNorEscape) {
  KeyNotes window;
  auto* const bar = new GenBrowserSearchBar(nullptr, nullptr, &window);
  auto* const field = bar->findChild<QLineEdit*>();

  QTest::keyClick(field, Qt::Key_Return);
  QTest::keyClick(field, Qt::Key_Enter);
  QTest::keyClick(field, Qt::Key_Escape);
  QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(field, Qt::Key_F, Qt::ControlModifier);

  EXPECT_EQ(window.mKeys, std::vector<int>{Qt::Key_F});
}

TEST_F(SearchBars, InputMethod_SearchesWhatItCommits) {
  Show();
  QInputMethodEvent composing(QStringLiteral("gai"), {});
  QGuiApplication::sendEvent(mField, &composing);
  EXPECT_EQ(GetResult(), "");

  QInputMethodEvent committing;
  committing.setCommitString(QStringLiteral("gain"));
  QGuiApplication::sendEvent(mField, &committing);

  EXPECT_EQ(GetText(), "gain");
  EXPECT_EQ(GetResult(), "Result 1 of 3");
}

TEST_F(SearchBars, TextOfOtherScripts_IsKept) {
  const char* const text = "\u05D4\u05D2\u05D1\u05E8 \u589E\u76CA \U0001F4F7";

  mBar->SetText(text);

  EXPECT_EQ(GetText(), text);
  EXPECT_EQ(GetResult(), "No result found");
}

TEST_F(SearchBars, AnotherGrid_IsSearchedWhenItIsAsked) {
  auto* const other = new PropertiesCtrl(&mWindow);
  const std::uint64_t row = other->AppendFeature(0, "GainAuto", *mCamera.Get<KrGenParameter>("GainAuto"));
  mBar->SetText("gain");

  mBar->SetProperties(other);
  EXPECT_EQ(other->GetSelected(), 0U);
  mBar->Search(true);

  EXPECT_EQ(other->GetSelected(), row);
  EXPECT_EQ(GetResult(), "Result 1 of 1");
}

TEST_F(SearchBars, WithoutAGrid_NothingIsFound) {
  mBar->SetProperties(nullptr);

  mBar->SetText("gain");
  mBar->MoveToNextOccurence();
  mBar->MoveToPreviousOccurence();
  mBar->Update();

  EXPECT_EQ(GetResult(), "No result found");
}

TEST_F(SearchBars, GridThatEnds_IsForgotten) {
  mBar->SetText("gain");

  delete mGrid;
  mBar->MoveToNextOccurence();
  mBar->Update();
  mBar->Search(true);

  EXPECT_EQ(GetResult(), "No result found");
}

TEST_F(SearchBars, RowsThatHaveGone_AreNotSelected) {
  mBar->SetText("gain");
  mGrid->Clear();
  FillGrid();
  mGrid->Select(mRows["Width"]);

  mBar->MoveToNextOccurence();
  EXPECT_EQ(GetSelected(), "Width");

  mBar->Search(true);
  EXPECT_EQ(GetSelected(), "Gain");
}

TEST_F(SearchBars, SelectionHandler_MayEndBarAndGrid) {
  const QStringList ways = {"move", "typed", "pasted by a key", "composed", "set", "pasted by the menu"};
  for (const QString& way : ways) {
    mGrid = new PropertiesCtrl(&mWindow);
    mBar = new GenBrowserSearchBar(nullptr, mGrid, &mWindow);
    mField = mBar->findChild<QLineEdit*>();
    FillGrid();
    if (way == "move")
      mBar->SetText("gain");
    mGrid->SetSelectionHandler([this] {
      delete mBar;
      mBar = nullptr;
      delete mGrid;
      mGrid = nullptr;
    });
    QGuiApplication::clipboard()->setText("gain");

    if (way == "move") {
      mBar->MoveToNextOccurence();
    } else if (way == "typed") {
      QTest::keyClick(mField, Qt::Key_G);
    } else if (way == "pasted by a key") {
      QTest::keyClick(mField, Qt::Key_V, Qt::ControlModifier);
    } else if (way == "composed") {
      QInputMethodEvent committing;
      committing.setCommitString(QStringLiteral("gain"));
      QGuiApplication::sendEvent(mField, &committing);
    } else if (way == "set") {
      mBar->SetText("gain");
    } else {
      mField->paste();
      EXPECT_NE(mBar, nullptr) << "it is searched afterwards";
    }

    EXPECT_TRUE(krtest::AwaitCondition([this] { return mBar == nullptr; })) << way.toStdString();
    EXPECT_EQ(mGrid, nullptr) << way.toStdString();
  }
}

TEST_F(SearchBars, TextThatNoEventBrings_IsSearchedOnceAfterwards) {
  mField->setText("gain");
  QEvent another(QEvent::Polish);
  QCoreApplication::sendEvent(mField, &another);
  EXPECT_EQ(GetResult(), "") << "who searches may end the field, which who sent that event still looks at";

  EXPECT_TRUE(krtest::AwaitCondition([this] { return GetResult() == "Result 1 of 3"; }));
  mField->setText("gai");
  mBar->Search(false);
  QCoreApplication::processEvents();
  EXPECT_EQ(GetResult(), "Result 1 of 3") << "searching again would move on";
}

TEST_F(SearchBars, Update_RepaintsTheGridAtOnce) {
  Show();
  PaintCounter counter(*mGrid->GetGrid().viewport());

  mBar->Update();

  EXPECT_EQ(counter.mCount, 1);
}

TEST_F(SearchBars, AssistiveTechnology_HearsNameAndText) {
  mBar->SetText("gain");

  QAccessibleInterface* const field = QAccessible::queryAccessibleInterface(mField);

  EXPECT_EQ(field->text(QAccessible::Name), "Search");
  EXPECT_EQ(field->text(QAccessible::Value), "gain");
}
