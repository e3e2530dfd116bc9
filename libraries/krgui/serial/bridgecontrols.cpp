#include "serial/bridgecontrols.h"

#include "platform/choicelist.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"

#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QStyle>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace krgui {

namespace {

namespace id = bridgeid;

/// Characters for which the lists have room.
constexpr int kPortListLetters = 8;
constexpr int kCOMPortListLetters = 6;
constexpr int kButtonMargins = 24;

constexpr struct {
  int id;
  const char* name;
} kNames[] = {
    {id::kDevicePort, "Device port"},
    {id::kCOMPort, "COM port"},
    {id::kConfigure, "Configure the COM port"},
    {id::kReset, "Reset the statistics"},
};

constexpr struct {
  int id;
  PixelRect BridgeLayout::*place;
} kPlaces[] = {
    {id::kPortBox, &BridgeLayout::portBox},
    {id::kDevicePort, &BridgeLayout::portList},
    {id::kSetupBox, &BridgeLayout::setupBox},
    {id::kNone, &BridgeLayout::none},
    {id::kCOMPortLink, &BridgeLayout::comPortLink},
    {id::kCOMPortLabel, &BridgeLayout::comPortLabel},
    {id::kCOMPort, &BridgeLayout::comPortList},
    {id::kConfigure, &BridgeLayout::configure},
    {id::kDescription, &BridgeLayout::description},
    {id::kCameraLink, &BridgeLayout::cameraLink},
    {id::kCameraLinkName, &BridgeLayout::cameraLinkName},
    {id::kState, &BridgeLayout::state},
    {id::kRatesBox, &BridgeLayout::ratesBox},
    {id::kStatisticsBox, &BridgeLayout::statisticsBox},
    {id::kBytesSent, &BridgeLayout::sent},
    {id::kBytesReceived, &BridgeLayout::received},
    {id::kReset, &BridgeLayout::reset},
};

void Move(QWidget& aWidget, const PixelRect& aRect) {
  aWidget.setGeometry(aRect.left, aRect.top, aRect.GetWidth(), aRect.GetHeight());
}

/// Not the size hint: styles make that as wide as a button looks good, where there is room.
int FindButtonWidth(const QPushButton& aButton) {
  return aButton.fontMetrics().size(Qt::TextShowMnemonic, aButton.text()).width() + kButtonMargins;
}

void ReserveLetters(QComboBox& aList, int aLetters) {
  aList.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  aList.setMinimumContentsLength(aLetters);
}

} // namespace

BridgeControls::BridgeControls(const QWidget& aDialog, Lookup aLookup)
    : mLookup(std::move(aLookup)), mCOMPorts(GetCOMPortControl()), mNormalFont(aDialog.font()),
      mBoldFont(aDialog.font()) {
  mBoldFont.setWeight(QFont::Bold);
  NameControls();
  for (QComboBox* list : {&GetPortList(), &GetCOMPortControl()})
    new ChoiceList(*list);
  ReserveLetters(GetPortList(), kPortListLetters);
  GetPortList().setPlaceholderText(QStringLiteral("Choose..."));
  ReserveLetters(GetCOMPortControl(), kCOMPortListLetters);
  CheckKind(BridgeKind::None);
}

void BridgeControls::NameControls() const {
  for (const auto& row : kNames)
    Get<QWidget>(row.id).setAccessibleName(QString::fromLatin1(row.name));
}

std::array<QRadioButton*, 3> BridgeControls::GetKindButtons() const {
  return {&Get<QRadioButton>(id::kNone), &Get<QRadioButton>(id::kCOMPortLink), &Get<QRadioButton>(id::kCameraLink)};
}

void BridgeControls::ListPorts(const SerialBridgeList::Bridges& aBridges) {
  QComboBox& list = GetPortList();
  const QVariant selected = list.currentIndex() > 0 ? list.currentData() : QVariant();
  const QSignalBlocker blocker(list);
  // What the user would choose from is no more.
  list.hidePopup();
  list.clear();
  for (const auto& bridge : aBridges)
    list.addItem(ToQString(bridge->GetPortName()), static_cast<int>(bridge->GetPort()));
  list.setCurrentIndex(selected.isValid() ? list.findData(selected) : -1);
}

KrDeviceSerial BridgeControls::GetSelectedPort() const {
  const QVariant selected = GetPortList().currentData();
  return selected.isValid() ? static_cast<KrDeviceSerial>(selected.toInt()) : KrDeviceSerial::Invalid;
}

void BridgeControls::CheckKind(BridgeKind aKind) {
  mKind = aKind;
  const QRadioButton* const checked = GetKindButtons().at(static_cast<std::size_t>(aKind));
  for (QRadioButton* button : GetKindButtons()) {
    const QSignalBlocker blocker(*button); // It was not the user.
    button->setChecked(button == checked);
    // The tabulator leads to what is checked, also before one of them had the focus.
    button->setFocusPolicy(button == checked ? Qt::StrongFocus : Qt::ClickFocus);
  }
}

void BridgeControls::ShowDescription(const KrString& aText) const {
  SetText(id::kDescription, aText);
}

void BridgeControls::ShowCameraLinkName(const KrString& aText) const {
  SetText(id::kCameraLinkName, aText);
}

void BridgeControls::ShowState(const KrString& aText) const {
  SetText(id::kState, aText);
}

void BridgeControls::ShowStatistics(const SerialBridge* aBridge) const {
  SetText(id::kBytesSent, FormatBytesSent(aBridge));
  SetText(id::kBytesReceived, FormatBytesReceived(aBridge));
}

void BridgeControls::ShowBaudRates(const SerialBridge* aBridge) const {
  const BaudRateLabels labels = GetBaudRateLabels(aBridge);
  for (std::size_t index = 0; index < labels.size(); ++index) {
    auto& label = Get<QLabel>(id::kRates.at(index));
    const QFont& font = labels.at(index).isBold ? mBoldFont : mNormalFont;
    if (label.isEnabled() != labels.at(index).isEnabled)
      label.setEnabled(labels.at(index).isEnabled);
    if (label.font() != font)
      label.setFont(font);
  }
}

void BridgeControls::Enable() const {
  const BridgeEnabling enabling = GetBridgeEnabling(mKind, mCOMPorts.GetSelected().has_value());
  for (const int control : {id::kCOMPortLabel, id::kCOMPort, id::kDescription})
    Get<QWidget>(control).setEnabled(enabling.comPort);
  GetConfigureButton().setEnabled(enabling.configure);
  Get<QWidget>(id::kCameraLinkName).setEnabled(enabling.cameraLinkName);
  for (const int control : {id::kBytesSent, id::kBytesReceived, id::kReset})
    Get<QWidget>(control).setEnabled(enabling.statistics);
}

/// One line, whatever a device is called.
void BridgeControls::SetText(int aLabel, const KrString& aText) const {
  auto& label = Get<QLabel>(aLabel);
  if (const QString text = ToPlainLine(aText); label.text() != text)
    label.setText(text);
}

void BridgeControls::LayOut(const QSize& aSize) const {
  const BridgeLayout layout = LayOutBridge(GetMetrics(aSize));
  for (const auto& row : kPlaces)
    Move(Get<QWidget>(row.id), layout.*row.place);
  for (std::size_t index = 0; index < id::kRates.size(); ++index)
    Move(Get<QWidget>(id::kRates.at(index)), layout.rates.at(index));
}

BridgeMetrics BridgeControls::GetMetrics(const QSize& aSize) const {
  const QFontMetrics normal(mNormalFont);
  const QFontMetrics bold(mBoldFont);
  BridgeMetrics metrics = {.width = aSize.width(), .height = aSize.height()};
  metrics.titleHeight = Get<QGroupBox>(id::kSetupBox).contentsMargins().top();
  metrics.lineHeight = std::max(normal.height(), bold.height());
  metrics.fieldHeight = std::max(GetCOMPortControl().sizeHint().height(), GetConfigureButton().sizeHint().height());
  for (const QRadioButton* button : GetKindButtons()) {
    metrics.radioWidth = std::max(metrics.radioWidth, button->sizeHint().width());
    metrics.radioHeight = std::max(metrics.radioHeight, button->sizeHint().height());
  }
  const QRadioButton& button = *GetKindButtons().front();
  metrics.indent = button.style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, &button) +
                   button.style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing, nullptr, &button);
  metrics.portListWidth = GetPortList().sizeHint().width();
  metrics.labelWidth = Get<QLabel>(id::kCOMPortLabel).sizeHint().width();
  metrics.listWidth = GetCOMPortControl().sizeHint().width();
  metrics.configureWidth = FindButtonWidth(GetConfigureButton());
  metrics.resetWidth = FindButtonWidth(GetResetButton());
  for (const int rate : id::kRates)
    metrics.rateWidth = std::max(metrics.rateWidth, bold.horizontalAdvance(Get<QLabel>(rate).text()));
  return metrics;
}

} // namespace krgui
