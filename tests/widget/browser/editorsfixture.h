#pragma once
// A property grid with a feature of every type, and hands to edit them with. The grid's messages are handed over by the
// test, so that it can look at what is between them.

#include "browser/genbrowsercombobox.h"
#include "browser/propertiesgrid.h"
#include "browser/updowncontrol.h"
#include "describedcamera.h"
#include "duringmodalloop.h"
#include "logic/browser/browserfilling.h"
#include "platform/ctooltiplistctrl.h"
#include "windowwait.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

namespace krgui {

inline std::string MakeEditorRegister(const std::string& aName, int aAddress, int aLength,
                                      const std::string& aMore = {}) {
  return "<IntReg Name=\"" + aName + "\"><Address>" + std::to_string(aAddress) + "</Address><Length>" +
         std::to_string(aLength) + "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + aMore +
         "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

inline std::string MakeEditorNodes() {
  return R"(<Category Name="Root"><pFeature>Features</pFeature></Category>
<Category Name="Features">
  <pFeature>BinningHorizontal</pFeature><pFeature>DeviceReset</pFeature><pFeature>DeviceRun</pFeature>
  <pFeature>DeviceUserID</pFeature><pFeature>ExposureTime</pFeature><pFeature>FileAccessBuffer</pFeature>
  <pFeature>GevCurrentIPAddress</pFeature><pFeature>GevMACAddress</pFeature><pFeature>LineMask</pFeature>
  <pFeature>OffsetX</pFeature><pFeature>PixelFormat</pFeature><pFeature>ReverseX</pFeature>
  <pFeature>SensorWidth</pFeature>
</Category>
<Integer Name="BinningHorizontal"><pValue>BinningReg</pValue><Min>0</Min><Max>10</Max><Inc>3</Inc></Integer>
<Command Name="DeviceReset"><pValue>ResetReg</pValue><CommandValue>1</CommandValue></Command>
<Command Name="DeviceRun"><pValue>RunReg</pValue><CommandValue>1</CommandValue><PollingTime>10000</PollingTime></Command>
<StringReg Name="DeviceUserID"><ToolTip>A name</ToolTip><DisplayName>Device User ID</DisplayName>
  <Address>0x140</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>
<Float Name="ExposureTime"><pValue>ExposureReg</pValue><Min>0</Min><Max>100</Max><Unit>us</Unit></Float>
<FloatReg Name="ExposureReg"><Address>0x120</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Endianess>LittleEndian</Endianess></FloatReg>
<Register Name="FileAccessBuffer"><Address>0x400</Address><Length>16</Length><AccessMode>RW</AccessMode>
  <pPort>Device</pPort></Register>
<Integer Name="GevCurrentIPAddress"><pValue>AddressReg</pValue></Integer>
<Integer Name="GevMACAddress"><pValue>MACReg</pValue></Integer>
<Integer Name="LineMask"><pIsLocked>LockReg</pIsLocked><pValue>MaskReg</pValue><Max>255</Max>
  <Representation>HexNumber</Representation></Integer>
<Integer Name="OffsetX"><pValue>OffsetReg</pValue><Min>0</Min><Max>1000</Max></Integer>
<Enumeration Name="PixelFormat">
  <EnumEntry Name="Mono8"><ToolTip>Eight bits</ToolTip><DisplayName>Mono 8</DisplayName><Value>1</Value></EnumEntry>
  <EnumEntry Name="Mono12"><ToolTip>Twelve &lt;b&gt;bits&lt;/b&gt;</ToolTip><Value>2</Value></EnumEntry>
  <EnumEntry Name="Secret"><Visibility>Invisible</Visibility><Value>3</Value></EnumEntry>
  <EnumEntry Name="Absent"><pIsAvailable>Zero</pIsAvailable><Value>4</Value></EnumEntry>
  <EnumEntry Name="RGB8"><Value>5</Value></EnumEntry>
  <pValue>FormatReg</pValue></Enumeration>
<Boolean Name="ReverseX"><pValue>ReverseReg</pValue></Boolean>
<Integer Name="SensorWidth"><Value>640</Value><ImposedAccessMode>RO</ImposedAccessMode></Integer>
<Integer Name="Zero"><Value>0</Value></Integer>
)" + MakeEditorRegister("BinningReg", 0x100, 4) +
         MakeEditorRegister("ResetReg", 0x170, 4) + MakeEditorRegister("RunReg", 0x174, 4) +
         MakeEditorRegister("AddressReg", 0x10C, 4) + MakeEditorRegister("MACReg", 0x110, 8) +
         MakeEditorRegister("LockReg", 0x180, 4) + MakeEditorRegister("MaskReg", 0x104, 4) +
         MakeEditorRegister("OffsetReg", 0x108, 4) + MakeEditorRegister("FormatReg", 0x118, 4) +
         MakeEditorRegister("ReverseReg", 0x11C, 4);
}

class EditorsTest : public testing::Test {
protected:
  explicit EditorsTest(const std::string& aNodes = MakeEditorNodes()) : camera(aNodes) {
    queue->Open();
    camera.Poke(0x118, {1});
    auto* layout = new QVBoxLayout(window.get());
    layout->addWidget(elsewhere);
    grid = new PropertiesGrid(window.get(), queue);
    layout->addWidget(grid);
    window->resize(560, 440);
    window->show();
    window->activateWindow();
    EXPECT_TRUE(krtest::AwaitActive(window.get()));
    Fill();
    elsewhere->setFocus();
    (void)camera.port.TakeRecords();
  }
  ~EditorsTest() override {
    window.reset();
    queue->Close();
  }

  void Fill() {
    BrowserOptions options;
    options.isTree = false;
    options.visibility = KrGenVisibility::Guru;
    options.showsDisplayNames = showsDisplayNames;
    grid->Fill([&](BrowserTree& aTree) {
      aTree.Clear();
      aTree.SetShowsDisplayNames(showsDisplayNames);
      FillBrowserTree(*camera.array, options, {}, aTree);
    });
    for (const auto& node : grid->GetTree().GetFeatures()) {
      node->Refresh();
    }
    Pump();
  }

  /// Hands over all messages, those that come of them too.
  void Pump() {
    do {
      QCoreApplication::processEvents();
      while (grid) {
        const std::optional<MessageQueue::Taken> taken = queue->Take();
        if (!taken) {
          break;
        }
        grid->HandleMessage(taken->Get());
      }
    } while (grid && !queue->IsEmpty());
    QCoreApplication::processEvents();
  }
  TreeItemData& Node(const char* aName) {
    for (const auto& node : grid->GetTree().GetFeatures()) {
      if (node->GetName() == KrString(aName)) {
        return *node;
      }
    }
    ADD_FAILURE() << "No feature " << aName;
    std::abort();
  }
  GridItem Item(const char* aName) { return Node(aName).GetItem(); }
  std::string Value(const char* aName) { return Node(aName).GetSnapshot().value.ToUtf8(); }

  /// Bytes of a register, as the device has them from now on; the rows know.
  void SetRegister(std::uint64_t aAddress, std::initializer_list<std::uint8_t> aBytes) {
    camera.Poke(aAddress, aBytes);
    camera.array->InvalidateCache();
    for (const auto& node : grid->GetTree().GetFeatures()) {
      node->Refresh();
    }
    Pump();
    (void)camera.port.TakeRecords();
  }
  /// The device changes a register by itself, and its feature's node hears of it.
  void ChangeRegister(std::uint64_t aAddress, std::initializer_list<std::uint8_t> aBytes, const char* aName) {
    camera.Poke(aAddress, aBytes);
    camera.array->InvalidateCache();
    Node(aName).OnParameterUpdate(Node(aName).GetParameter());
    Pump();
  }
  /// What a window manager does after a popup or dialog; the platform without a screen has none.
  void ActivateAgain() {
    window->activateWindow();
    ASSERT_TRUE(krtest::AwaitActive(window.get()));
    Pump();
  }
  /// Selects a row by the keyboard's way: the grid keeps the focus.
  void Select(const char* aName) {
    grid->setFocus();
    grid->Select(Item(aName));
    Pump();
  }
  /// Clicks a row beside its value, or in it.
  void ClickName(const char* aName) { ClickAt(aName, 60); }
  void ClickValue(const char* aName) { ClickAt(aName, 300); }
  /// Selects a row and goes into its editor by Enter.
  void Enter(const char* aName) {
    Select(aName);
    QTest::keyClick(grid, Qt::Key_Return);
    Pump();
  }
  void ClickAt(const char* aName, int aX) {
    const QRect row = grid->FindRow(Item(aName));
    QWidget* under = grid->viewport()->childAt(aX, row.center().y());
    QWidget* clicked = under != nullptr ? under : grid->viewport();
    QTest::mouseClick(clicked, Qt::LeftButton, {}, clicked->mapFrom(grid->viewport(), QPoint(aX, row.center().y())));
    Pump();
  }

  template <typename Widget>
  Widget* Find(const char* aName) {
    auto* widget = grid->viewport()->findChild<Widget*>(QLatin1String(aName));
    return widget != nullptr && widget->isVisible() ? widget : nullptr;
  }
  QLineEdit* NumberBox() { return Find<QLineEdit>("numberEditor"); }
  QLineEdit* TextBox() { return Find<QLineEdit>("textEditor"); }
  GenBrowserComboBox* Combo() { return Find<GenBrowserComboBox>("choiceEditor"); }
  QPushButton* Button() { return Find<QPushButton>("commandEditor"); }
  UpDownControl* UpDown() { return Find<UpDownControl>("upDown"); }
  QToolButton* Arrow(const char* aName) { return UpDown()->findChild<QToolButton*>(QLatin1String(aName)); }

  /// Types into an edit box in the place of what is there, and ends with a key.
  void Type(QLineEdit* aEditBox, const char* aText, Qt::Key aEnd) {
    ASSERT_NE(aEditBox, nullptr);
    aEditBox->setFocus();
    aEditBox->selectAll();
    QTest::keyClicks(aEditBox, QLatin1String(aText));
    QTest::keyClick(aEditBox, aEnd);
  }

  std::int64_t Integer(const char* aName) { return Read(camera.Integer(aName), &KrGenInteger::GetValue); }
  /// Closes the message box that comes, and notes what it says.
  void ExpectMessage() {
    message.clear();
    DuringNextModalLoop([this](QWidget& aBox) {
      message = aBox.findChild<QLabel*>(QStringLiteral("text"))->text();
      caption = aBox.windowTitle();
      icon = aBox.findChild<QLabel*>(QStringLiteral("picture"))->accessibleName();
      QTest::keyClick(&aBox, Qt::Key_Escape);
    });
  }
  void FailWrites() {
    camera.port.SetFault([](const RegisterAccessRecord& aRecord) {
      return aRecord.isWrite ? KrResult(KrResult::Code::TimeLimitExceeded, "The device did not answer.") : KrResult();
    });
  }

  bool showsDisplayNames = false;
  DescribedCamera camera;
  std::shared_ptr<MessageQueue> queue = std::make_shared<MessageQueue>();
  std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
  QLineEdit* elsewhere = new QLineEdit;
  QPointer<PropertiesGrid> grid;
  QString message;
  QString caption;
  QString icon;
};

} // namespace krgui
