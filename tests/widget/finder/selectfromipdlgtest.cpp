// The dialog that asks for a device's address.

#include "finder/selectfromipdlg.h"

#include "duringmodalloop.h"

#include <QLineEdit>

#include <gtest/gtest.h>

namespace krgui {

namespace {

void Type(const char* aText) {
  for (const char* character = aText; *character != '\0'; ++character) {
    QTest::keyClick(QApplication::focusWidget(), *character);
  }
}

struct SelectCase {
  const char* name;
  const char* keys;
  Qt::Key end;
  ModalResult result;
  const char* address;
};

class SelectFromIPDlgTest : public testing::TestWithParam<SelectCase> {};

TEST_P(SelectFromIPDlgTest, KeysAlone_GiveResultAndAddress) {
  QWidget owner;
  owner.show();
  SelectFromIPDlg dialog(&owner);
  DuringNextModalLoop([](QWidget& aDialog) {
    const auto fields = aDialog.findChild<QWidget*>(QStringLiteral("control1125"))->findChildren<QLineEdit*>();
    EXPECT_EQ(QApplication::focusWidget(), fields.constFirst());
    EXPECT_EQ(aDialog.windowTitle(), QStringLiteral("Select From IP Address"));
    Type(GetParam().keys);
    QTest::keyClick(QApplication::focusWidget(), GetParam().end);
  });

  EXPECT_EQ(dialog.Run(), GetParam().result);

  EXPECT_EQ(dialog.GetAddress(), GetParam().address);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SelectFromIPDlgTest,
    testing::Values(SelectCase{"Address", "192.168.1.20", Qt::Key_Return, ModalResult::OK, "192.168.1.20"},
                    SelectCase{"Untouched", "", Qt::Key_Return, ModalResult::OK, "0.0.0.0"},
                    SelectCase{"Part", "10.1", Qt::Key_Enter, ModalResult::OK, "10.1.0.0"},
                    SelectCase{"Cancelled", "192.168.1.20", Qt::Key_Escape, ModalResult::Cancel, ""}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(SelectFromIPDlg, OfferedAddress_IsTheAnswerUnlessAnotherIsTyped) {
  QWidget owner;
  owner.show();
  for (const auto& [keys, address] : {std::pair{"", "10.1.2.3"}, {"192", "192.1.2.3"}}) {
    SelectFromIPDlg dialog(&owner, 0x0A010203);
    DuringNextModalLoop([keys = keys](QWidget&) {
      Type(keys);
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    });

    EXPECT_EQ(dialog.Run(), ModalResult::OK);

    EXPECT_EQ(dialog.GetAddress(), address);
  }
}

TEST(SelectFromIPDlg, OwnerDies_GivesNoAddress) {
  auto owner = std::make_unique<QWidget>();
  owner->show();
  SelectFromIPDlg dialog(owner.get());
  DuringNextModalLoop([&](QWidget&) {
    Type("10.1.2.3");
    owner.reset();
  });

  EXPECT_EQ(dialog.Run(), ModalResult::Gone);

  EXPECT_TRUE(dialog.GetAddress().IsEmpty());
}

} // namespace

} // namespace krgui
