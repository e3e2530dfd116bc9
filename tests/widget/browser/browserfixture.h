#pragma once
// What tests of the feature browser's window share: a camera of memory with features of every visibility, a window
// whose controls and rows can be had, and a user's hands.

#include "browser/browsercontrols.h"
#include "browser/descriptionctrl.h"
#include "browser/errorbutton.h"
#include "browser/genbrowserwnd.h"
#include "browser/propertiesgrid.h"
#include "describedcamera.h"
#include "krgui/genbrowsersearchbar.h"
#include "krgui/propertiesctrl.h"
#include "platform/toolbarbutton.h"
#include "testwnd.h"
#include "windowwait.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

/// The registers of Width and Height, of which a test may make the device forget or refuse one.
inline constexpr std::uint64_t kWidthAddress = 0x100;
inline constexpr std::uint64_t kHeightAddress = 0x104;

inline std::string MakeBrowserNodes() {
  const auto makeRegister = [](const char* aName, std::uint64_t aAddress) {
    return std::string("<IntReg Name=\"") + aName + "\"><Address>" + std::to_string(aAddress) +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
           "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n";
  };
  return R"(
<Category Name="Root"><pFeature>Loose</pFeature><pFeature>ImageFormatControl</pFeature><pFeature>AnalogControl</pFeature>
  <pFeature>GuruControl</pFeature></Category>
<Category Name="ImageFormatControl"><DisplayName>Image Format Control</DisplayName><Description>How pictures are made.
  </Description><pFeature>Width</pFeature><pFeature>Height</pFeature><pFeature>PixelFormat</pFeature>
  <pFeature>GuruChoice</pFeature></Category>
<Category Name="AnalogControl"><DisplayName>Analog Control</DisplayName><pFeature>Gain</pFeature>
  <pFeature>GainAuto</pFeature><pFeature>DigitalGainSelector</pFeature><pFeature>BlackLevel</pFeature>
  <pFeature>Missing</pFeature></Category>
<Category Name="GuruControl"><Visibility>Guru</Visibility><pFeature>InGuruCategory</pFeature></Category>
<Integer Name="Loose"><Value>1</Value></Integer>
<Integer Name="Width"><DisplayName>Columns</DisplayName><Description>How wide pictures are.</Description>
  <pValue>WidthReg</pValue></Integer>
<Integer Name="Height"><DisplayName>Rows</DisplayName><pValue>HeightReg</pValue></Integer>
<Enumeration Name="PixelFormat"><EnumEntry Name="Mono8"><Value>0</Value></EnumEntry>
  <EnumEntry Name="Mono12"><Visibility>Expert</Visibility><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>
<Enumeration Name="GuruChoice"><EnumEntry Name="A"><Visibility>Guru</Visibility><Value>0</Value></EnumEntry>
  <Value>0</Value></Enumeration>
<Float Name="Gain"><Value>1.5</Value></Float>
<Enumeration Name="GainAuto"><Visibility>Expert</Visibility><EnumEntry Name="Off"><Value>0</Value></EnumEntry>
  <Value>0</Value></Enumeration>
<Integer Name="DigitalGainSelector"><Value>0</Value></Integer>
<Integer Name="BlackLevel"><Visibility>Guru</Visibility><Value>7</Value></Integer>
<Integer Name="Missing"><pIsImplemented>No</pIsImplemented><Value>1</Value></Integer>
<Integer Name="InGuruCategory"><Value>1</Value></Integer>
<Integer Name="No"><Value>0</Value></Integer>
)" + makeRegister("WidthReg", kWidthAddress) +
         makeRegister("HeightReg", kHeightAddress);
}

class TestBrowserWnd : public GenBrowserWnd {
public:
  explicit TestBrowserWnd(FeatureFilter aFilter = {}, const RefreshRhythm& aRhythm = {},
                          int aErrorIntervalMs = kErrorIntervalMs)
      : GenBrowserWnd(std::move(aFilter), aRhythm, aErrorIntervalMs) {}
  ~TestBrowserWnd() override { Dispose(); }

  using Wnd::EndDialog;
  using Wnd::GetControl;

  /// The controls of a class, which need not be one of the toolkit's own kind.
  template <typename Control>
  std::vector<Control*> FindAll() const {
    std::vector<Control*> controls;
    for (QWidget* widget : GetWidget()->findChildren<QWidget*>()) {
      if (auto* control = dynamic_cast<Control*>(widget))
        controls.push_back(control);
    }
    return controls;
  }
  template <typename Control>
  Control& Find() const {
    return *FindAll<Control>().at(0);
  }
  PropertiesGrid& GetGrid() const { return Find<PropertiesCtrl>().GetGrid(); }
  GenBrowserSearchBar& GetSearchBar() const { return Find<GenBrowserSearchBar>(); }
  DescriptionCtrl& GetDescription() const { return Find<DescriptionCtrl>(); }
  ErrorButton& GetErrorButton() const { return Find<ErrorButton>(); }
  QComboBox& GetVisibilityList() const { return *qobject_cast<QComboBox*>(GetControl(1087)); }
  QString GetResult() const { return qobject_cast<QLabel*>(GetControl(1094))->text(); }
  /// A button by its tooltip.
  QAbstractButton& GetButton(const char* aToolTip) const {
    for (QAbstractButton* button : GetWidget()->findChildren<QAbstractButton*>()) {
      if (button->toolTip() == QLatin1String(aToolTip))
        return *button;
    }
    throw std::runtime_error(std::string("There is no button ") + aToolTip);
  }
  void Click(const char* aToolTip) const { QTest::mouseClick(&GetButton(aToolTip), Qt::LeftButton); }

  /// The rows, categories with what is in them in brackets.
  std::string GetRows() const {
    return IsOpen() ? Print(GetGrid().GetTree(), GetGrid().GetTree().GetTopLevel()) : std::string("closed");
  }
  GridItem FindRow(const char* aName) const {
    for (const auto& node : GetGrid().GetTree().GetFeatures()) {
      if (node->GetName() == aName)
        return node->GetItem();
    }
    for (const auto& node : GetGrid().GetTree().GetCategories()) {
      if (node->GetName() == aName)
        return node->GetItem();
    }
    return kNoItem;
  }
  /// Without the blank before the unit, as nothing here has one.
  std::string GetValue(const char* aName) const {
    const TreeItemData* node = GetGrid().GetTree().FindFeature(FindRow(aName));
    if (!node)
      return "-";
    const std::string value = node->GetSnapshot().value.ToUtf8();
    return value.substr(0, value.find_last_not_of(' ') + 1);
  }
  std::string GetSelectedName() const {
    const BrowserTree::Item* item = GetGrid().GetTree().Find(GetGrid().GetSelected());
    return item ? item->node->GetName().ToUtf8() : std::string();
  }

private:
  static std::string Print(const BrowserTree& aTree, const std::vector<GridItem>& aItems) {
    std::string text;
    for (const GridItem each : aItems) {
      const BrowserTree::Item& item = *aTree.Find(each);
      text += (text.empty() ? "" : " ") + item.node->GetName().ToUtf8();
      if (!item.children.empty())
        text += "[" + Print(aTree, item.children) + "]";
    }
    return text;
  }
};

class GenBrowserTest : public testing::Test {
protected:
  void Open() {
    mWindow.SetGenParameterArray(mCamera.array.get());
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
    ASSERT_TRUE(krtest::AwaitActive(mWindow.GetWidget()));
  }
  [[nodiscard]] bool AwaitValue(const char* aName, const std::string& aValue) {
    return WaitFor([&] { return mWindow.GetValue(aName) == aValue; });
  }
  void Press(Qt::Key aKey, Qt::KeyboardModifiers aModifiers = Qt::NoModifier) {
    QWidget* focus = mWindow.GetWidget()->window()->focusWidget();
    QTest::keyClick(focus ? focus : mWindow.GetWidget(), aKey, aModifiers);
  }

  DescribedCamera mCamera{MakeBrowserNodes()};
  TestBrowserWnd mWindow;
};

inline constexpr char kBeginnerRows[] =
    "Loose ImageFormatControl[Width Height PixelFormat] AnalogControl[Gain DigitalGainSelector]";
inline constexpr char kExpertRows[] =
    "Loose ImageFormatControl[Width Height PixelFormat] AnalogControl[Gain GainAuto DigitalGainSelector]";
inline constexpr char kGuruRows[] =
    "Loose ImageFormatControl[Width Height PixelFormat GuruChoice] "
    "AnalogControl[Gain GainAuto DigitalGainSelector BlackLevel] GuruControl[InGuruCategory]";

} // namespace krgui
