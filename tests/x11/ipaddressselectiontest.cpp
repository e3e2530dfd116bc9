// The selection that the middle button pastes, which only a window system has: into the control for an address as into
// any field.

#include "platform/ipaddresscontrol.h"
#include "windowwait.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace krgui {

namespace {

struct SelectionCase {
  const char* name;
  const char* selected;
  const char* text;
};

class IPAddressSelection : public testing::TestWithParam<SelectionCase> {};

TEST_P(IPAddressSelection, MiddleButton_PastesTheWholeAddressOrNothing) {
  ASSERT_TRUE(QGuiApplication::clipboard()->supportsSelection());
  QWidget window;
  window.resize(300, 60);
  IPAddressControl control(&window);
  control.setGeometry(10, 10, 200, 26);
  control.SetAddress(0x0A010203);
  window.show();
  ASSERT_TRUE(krtest::AwaitExposed(&window));
  QGuiApplication::clipboard()->setText(QString::fromLatin1(GetParam().selected), QClipboard::Selection);

  QTest::mouseClick(control.findChildren<QLineEdit*>().at(2), Qt::MiddleButton);

  EXPECT_EQ(control.GetText().toStdString(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Selections, IPAddressSelection,
                         testing::Values(SelectionCase{"Address", "192.168.1.20", "192.168.1.20"},
                                         SelectionCase{"SomethingElse", "eth0", "10.1.2.3"}),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace

} // namespace krgui
