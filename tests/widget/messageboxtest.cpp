// Message boxes: the answers of keys, buttons and close box, what is shown of a text, and boxes whose owner ends.

#include "platform/messagebox.h"
#include "duringmodalloop.h"
#include "testwnd.h"

#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <gtest/gtest.h>

#include <memory>

namespace krgui {

namespace {

QPushButton* FindButton(QWidget& aBox, const char* aText) {
  for (QPushButton* button : aBox.findChildren<QPushButton*>()) {
    if (button->text().remove(QLatin1Char('&')) == QLatin1String(aText)) {
      return button;
    }
  }
  return nullptr;
}

void Press(QWidget& aBox, Qt::Key aKey) {
  QTest::keyClick(aBox.window()->focusWidget(), aKey);
}

struct AnswerCase {
  const char* name;
  MessageButtons buttons;
  std::function<void(QWidget&)> act;
  ModalResult answer;
};

class MessageBoxAnswer : public testing::TestWithParam<AnswerCase> {};

TEST_P(MessageBoxAnswer, UsersAction_GivesItsAnswer) {
  QWidget owner;
  owner.show();
  DuringNextModalLoop(GetParam().act);

  const ModalResult answer = ShowMessage(&owner, QStringLiteral("Continue?"), QStringLiteral("Warning"),
                                         MessageIcon::Exclamation, GetParam().buttons);

  EXPECT_EQ(answer, GetParam().answer);
  EXPECT_TRUE(owner.findChildren<QDialog*>().isEmpty());
}

constexpr auto kOK = MessageButtons::OK;
constexpr auto kYesNo = MessageButtons::YesNo;

INSTANTIATE_TEST_SUITE_P(
    Actions, MessageBoxAnswer,
    testing::Values(
        AnswerCase{"EnterOnOK", kOK, [](QWidget& aBox) { Press(aBox, Qt::Key_Return); }, ModalResult::OK},
        AnswerCase{"EscapeOnOK", kOK, [](QWidget& aBox) { Press(aBox, Qt::Key_Escape); }, ModalResult::OK},
        AnswerCase{"SpaceOnOK", kOK, [](QWidget& aBox) { Press(aBox, Qt::Key_Space); }, ModalResult::OK},
        AnswerCase{"CloseBoxOnOK", kOK, [](QWidget& aBox) { aBox.close(); }, ModalResult::OK},
        AnswerCase{"ClickOnOK", kOK, [](QWidget& aBox) { QTest::mouseClick(FindButton(aBox, "OK"), Qt::LeftButton); },
                   ModalResult::OK},
        AnswerCase{"EnterOnYesNo", kYesNo, [](QWidget& aBox) { Press(aBox, Qt::Key_Return); }, ModalResult::Yes},
        AnswerCase{"EscapeOnYesNo", kYesNo, [](QWidget& aBox) { Press(aBox, Qt::Key_Escape); }, ModalResult::No},
        AnswerCase{"CloseBoxOnYesNo", kYesNo, [](QWidget& aBox) { aBox.close(); }, ModalResult::No},
        AnswerCase{"LetterYes", kYesNo, [](QWidget& aBox) { Press(aBox, Qt::Key_Y); }, ModalResult::Yes},
        AnswerCase{"LetterNo", kYesNo, [](QWidget& aBox) { Press(aBox, Qt::Key_N); }, ModalResult::No},
        AnswerCase{"TabAndEnter", kYesNo,
                   [](QWidget& aBox) {
                     Press(aBox, Qt::Key_Tab);
                     Press(aBox, Qt::Key_Return);
                   },
                   ModalResult::No},
        AnswerCase{"ClickOnYes", kYesNo,
                   [](QWidget& aBox) { QTest::mouseClick(FindButton(aBox, "Yes"), Qt::LeftButton); }, ModalResult::Yes},
        AnswerCase{"ClickOnNo", kYesNo,
                   [](QWidget& aBox) { QTest::mouseClick(FindButton(aBox, "No"), Qt::LeftButton); }, ModalResult::No}),
    [](const auto& aInfo) { return aInfo.param.name; });

/// Shows a box, looks at it and closes it.
void LookAtBox(const QString& aText, std::function<void(QWidget&)> aLook, const QString& aDetail = {}) {
  DuringNextModalLoop([look = std::move(aLook)](QWidget& aBox) {
    look(aBox);
    aBox.close();
  });
  (void)ShowMessage(nullptr, aText, QStringLiteral("Error"), MessageIcon::Stop, kOK, aDetail);
}

QString GetShownText(const QWidget& aBox) {
  const auto* label = aBox.findChild<QLabel*>(QStringLiteral("text"));
  EXPECT_EQ(label->textFormat(), Qt::PlainText);
  return label->text();
}

TEST(MessageBox, Markup_IsShownAsItIs) {
  LookAtBox(QStringLiteral("<b>bold</b> &amp; [*]"), [](QWidget& aBox) {
    EXPECT_EQ(GetShownText(aBox), QStringLiteral("<b>bold</b> &amp; [*]"));
    EXPECT_EQ(aBox.windowTitle(), QStringLiteral("Error"));
  });
}

TEST(MessageBox, CarriageReturnsAndLineFeeds_BreakTheLineOnce) {
  LookAtBox(QStringLiteral("First.\r\n\r\nSecond?"), [](QWidget& aBox) {
    const auto* label = aBox.findChild<QLabel*>(QStringLiteral("text"));
    EXPECT_EQ(GetShownText(aBox), QStringLiteral("First.\n\nSecond?"));
    EXPECT_GE(label->height(), 3 * label->fontMetrics().lineSpacing());
  });
}

TEST(MessageBox, LongText_IsBrokenIntoLinesAndWholeOnTheScreen) {
  LookAtBox(QStringLiteral("The device is on a subnet. ").repeated(12), [](QWidget& aBox) {
    const auto* label = aBox.findChild<QLabel*>(QStringLiteral("text"));
    EXPECT_TRUE(label->wordWrap());
    EXPECT_GE(label->height(), label->heightForWidth(label->width()));
    EXPECT_TRUE(aBox.rect().contains(label->geometry()));
    EXPECT_LT(aBox.width(), 700);
  });
}

TEST(MessageBox, ManyLines_AreScrolledAndTheAnswerStaysOnTheScreen) {
  for (const QString& line : {QStringLiteral("12:3: a short one"),
                              QStringLiteral("12:3: one that takes two lines of the box. ").repeated(2)}) {
    const QString text = (line + QLatin1String("\n")).repeated(120) + QLatin1String("<b>the last</b>");
    LookAtBox(text, [&](QWidget& aBox) {
      EXPECT_EQ(GetShownText(aBox), text);
      EXPECT_TRUE(aBox.screen()->availableGeometry().contains(aBox.frameGeometry()));
      EXPECT_TRUE(aBox.rect().contains(FindButton(aBox, "OK")->geometry()));
      EXPECT_TRUE(FindButton(aBox, "OK")->hasFocus());
      auto* const view = aBox.findChild<QScrollArea*>();
      ASSERT_NE(view, nullptr);
      const auto* label = aBox.findChild<QLabel*>(QStringLiteral("text"));
      EXPECT_GE(label->height(), 121 * label->fontMetrics().lineSpacing());
      EXPECT_GE(view->viewport()->width(), label->width());
      EXPECT_TRUE(label->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));

      // Without a mouse, too.
      Press(aBox, Qt::Key_Tab);
      EXPECT_TRUE(view->hasFocus());
      for (int page = 0; page < 60; ++page)
        Press(aBox, Qt::Key_PageDown);
      EXPECT_EQ(view->verticalScrollBar()->value(), view->verticalScrollBar()->maximum());
      EXPECT_GT(view->verticalScrollBar()->maximum(), 0);
    });
  }
}

TEST(MessageBox, Detail_StandsBelowTheTextAndIsHeardToo) {
  const auto look = [](QWidget& aBox) {
    const auto* text = aBox.findChild<QLabel*>(QStringLiteral("text"));
    const auto* detail = aBox.findChild<QLabel*>(QStringLiteral("detail"));
    ASSERT_NE(detail, nullptr);
    EXPECT_EQ(GetShownText(aBox), QStringLiteral("Could not contact device. "));
    EXPECT_EQ(detail->text(), QStringLiteral("<b>Nothing</b> answers.\nTwo lines."));
    EXPECT_EQ(detail->textFormat(), Qt::PlainText);
    EXPECT_EQ(detail->x(), text->x());
    EXPECT_GT(detail->y(), text->geometry().bottom());
    EXPECT_GT(FindButton(aBox, "OK")->y(), detail->geometry().bottom());
    EXPECT_EQ(aBox.accessibleDescription(), text->text() + QLatin1Char('\n') + detail->text());
  };

  LookAtBox(QStringLiteral("Could not contact device. "), look,
            QStringLiteral("<b>Nothing</b> answers.\r\nTwo lines."));
}

TEST(MessageBox, Reader_HearsTextAndKind) {
  LookAtBox(QStringLiteral("Could not contact device. "), [](QWidget& aBox) {
    EXPECT_EQ(aBox.accessibleDescription(), QStringLiteral("Could not contact device. "));
    EXPECT_EQ(aBox.findChild<QLabel*>(QStringLiteral("picture"))->accessibleName(), QStringLiteral("Error"));
    EXPECT_FALSE(aBox.findChild<QLabel*>(QStringLiteral("picture"))->pixmap().isNull());
  });
}

TEST(MessageBox, Reader_HearsLinesWithoutCarriageReturns) {
  LookAtBox(QStringLiteral("First.\r\n\r\nSecond?"),
            [](QWidget& aBox) { EXPECT_EQ(aBox.accessibleDescription(), QStringLiteral("First.\n\nSecond?")); });
}

TEST(MessageBox, OwnerDies_SaysThatItIsGone) {
  auto owner = std::make_unique<QWidget>();
  owner->show();
  DuringNextModalLoop([&](QWidget&) { owner.reset(); });

  EXPECT_EQ(ShowMessage(owner.get(), QStringLiteral("?"), {}, MessageIcon::Question, kYesNo), ModalResult::Gone);
}

TEST(MessageBox, OwnerWindowCloses_SaysThatItIsGone) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  DuringNextModalLoop([&](QWidget&) { EXPECT_TRUE(window.Close().IsOK()); });

  const ModalResult answer = ShowMessage(window.GetWidget(), QStringLiteral("?"), {}, MessageIcon::Stop);

  EXPECT_EQ(answer, ModalResult::Gone);
  DeleteWhatIsLeft();
}

} // namespace

} // namespace krgui
