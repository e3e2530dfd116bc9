#include "camerabridge/cameracontrols.h"

#include "platform/choicelist.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

namespace id = cameraid;

constexpr int kButtonMargins = 24;
constexpr int kListMargin = 24;
constexpr int kBrowserInset = 2;
constexpr int kBrowserShift = 1;
/// Beside a label's text, as styles draw letters a little beyond it.
constexpr int kLabelMargin = 4;
/// In the feature browser's widest row, and what else is in it.
constexpr const char* kBrowserTexts = "VisibilityBeginner";
constexpr int kBrowserButtons = 190;
/// A status as long as it is of most cameras.
constexpr const char* kUsualStatus = "GenApi interface containing 999 parameters available";

/// Of the controls that no label names.
constexpr struct {
  int id;
  const char* name;
} kNames[] = {
    {id::kDevicePort, "Device port"},
    {id::kProbe, "Probe for a CL Protocol camera"},
    {id::kCLProtocolXML, "CL Protocol XML"},
    {id::kCLProtocolConnect, "Connect the CL Protocol camera"},
    {id::kGenCPXML, "GenCP XML"},
    {id::kGenCPConnect, "Connect the GenCP camera"},
    {id::kPath, "Path of the camera file"},
    {id::kBrowse, "Choose a camera file"},
    {id::kLoad, "Load the camera file"},
    {id::kReset, "Reset the statistics"},
};

constexpr struct {
  int id;
  PixelRect CameraLayout::*place;
} kPlaces[] = {
    {id::kSetupBox, &CameraLayout::setupBox},
    {id::kDevicePort, &CameraLayout::ports},
    {id::kNone, &CameraLayout::none},
    {id::kCLProtocol, &CameraLayout::clProtocol},
    {id::kTemplateLabel, &CameraLayout::templateLabel},
    {id::kTemplate, &CameraLayout::templates},
    {id::kProbe, &CameraLayout::probe},
    {id::kProbeStatus, &CameraLayout::probeStatus},
    {id::kCLProtocolXMLLabel, &CameraLayout::clXMLLabel},
    {id::kCLProtocolXML, &CameraLayout::clXMLs},
    {id::kCLProtocolConnect, &CameraLayout::clConnect},
    {id::kCLProtocolStatus, &CameraLayout::clStatus},
    {id::kGenCP, &CameraLayout::genCP},
    {id::kGenCPXMLLabel, &CameraLayout::genCPXMLLabel},
    {id::kGenCPXML, &CameraLayout::genCPXMLs},
    {id::kGenCPConnect, &CameraLayout::genCPConnect},
    {id::kGenCPStatus, &CameraLayout::genCPStatus},
    {id::kCameraFile, &CameraLayout::cameraFile},
    {id::kPathLabel, &CameraLayout::pathLabel},
    {id::kPath, &CameraLayout::path},
    {id::kBrowse, &CameraLayout::browse},
    {id::kLoad, &CameraLayout::load},
    {id::kCameraFileStatus, &CameraLayout::fileStatus},
    {id::kSourceLabel, &CameraLayout::sourceLabel},
    {id::kSource, &CameraLayout::sources},
    {id::kSynchronization, &CameraLayout::synchronization},
    {id::kState, &CameraLayout::state},
    {id::kStatisticsBox, &CameraLayout::statisticsBox},
    {id::kBytesSent, &CameraLayout::sent},
    {id::kBytesReceived, &CameraLayout::received},
    {id::kReset, &CameraLayout::reset},
    {id::kPoCL, &CameraLayout::poCL},
    {id::kBrowserFrame, &CameraLayout::browser},
};

/// What each fact enables.
constexpr struct {
  int id;
  bool CameraBridgeEnabling::*isEnabled;
} kEnabled[] = {
    {id::kDevicePort, &CameraBridgeEnabling::port},
    {id::kNone, &CameraBridgeEnabling::port},
    {id::kCLProtocol, &CameraBridgeEnabling::port},
    {id::kTemplateLabel, &CameraBridgeEnabling::clProtocol},
    {id::kTemplate, &CameraBridgeEnabling::templates},
    {id::kProbe, &CameraBridgeEnabling::templates},
    {id::kProbeStatus, &CameraBridgeEnabling::clProtocol},
    {id::kCLProtocolXMLLabel, &CameraBridgeEnabling::clProtocol},
    {id::kCLProtocolXML, &CameraBridgeEnabling::clProtocolXML},
    {id::kCLProtocolConnect, &CameraBridgeEnabling::clProtocolXML},
    {id::kCLProtocolStatus, &CameraBridgeEnabling::clProtocol},
    {id::kGenCP, &CameraBridgeEnabling::port},
    {id::kGenCPXMLLabel, &CameraBridgeEnabling::genCP},
    {id::kGenCPXML, &CameraBridgeEnabling::genCPXML},
    {id::kGenCPConnect, &CameraBridgeEnabling::genCPXML},
    {id::kGenCPStatus, &CameraBridgeEnabling::genCP},
    {id::kCameraFile, &CameraBridgeEnabling::cameraFileKind},
    {id::kPathLabel, &CameraBridgeEnabling::cameraFile},
    {id::kPath, &CameraBridgeEnabling::cameraFile},
    {id::kBrowse, &CameraBridgeEnabling::cameraFile},
    {id::kLoad, &CameraBridgeEnabling::cameraFile},
    {id::kCameraFileStatus, &CameraBridgeEnabling::cameraFile},
    {id::kSourceLabel, &CameraBridgeEnabling::sources},
    {id::kSource, &CameraBridgeEnabling::sources},
    {id::kSynchronization, &CameraBridgeEnabling::port},
    {id::kBytesSent, &CameraBridgeEnabling::port},
    {id::kBytesReceived, &CameraBridgeEnabling::port},
    {id::kReset, &CameraBridgeEnabling::port},
    {id::kPoCL, &CameraBridgeEnabling::poCL},
};

constexpr int kCameraFileControls[] = {id::kCameraFile, id::kPathLabel, id::kPath,
                                       id::kBrowse,     id::kLoad,      id::kCameraFileStatus};
constexpr int kLists[] = {id::kDevicePort, id::kTemplate, id::kCLProtocolXML, id::kGenCPXML, id::kSource};
constexpr int kLabels[] = {id::kTemplateLabel, id::kCLProtocolXMLLabel, id::kGenCPXMLLabel, id::kPathLabel,
                           id::kSourceLabel};
constexpr int kButtons[] = {id::kProbe, id::kCLProtocolConnect, id::kGenCPConnect, id::kLoad, id::kReset};
constexpr int kSwitches[] = {id::kNone, id::kCLProtocol, id::kGenCP, id::kCameraFile, id::kSynchronization, id::kPoCL};

/// None for the empty text: an empty bubble would be shown for it.
void SetToolTip(QWidget& aControl, const QString& aText) {
  if (aText.isEmpty())
    aControl.setToolTip(QStringLiteral(""));
  else if (aControl.toolTip() != ToPlainToolTip(aText))
    aControl.setToolTip(ToPlainToolTip(aText));
}

KrDeviceSerial GetChosenPort(const QComboBox* aList) {
  const QVariant chosen = aList ? aList->currentData() : QVariant();
  return chosen.isValid() ? static_cast<KrDeviceSerial>(chosen.toInt()) : KrDeviceSerial::Invalid;
}

} // namespace

CameraControls::CameraControls(Lookup aLookup) : mLookup(std::move(aLookup)) {
  for (const auto& row : kNames) {
    if (auto* const control = Find<QWidget>(row.id))
      control->setAccessibleName(QString::fromLatin1(row.name));
  }
  // As wide as the layout says, whatever is listed.
  for (const int list : kLists) {
    if (auto* const control = Find<QComboBox>(list)) {
      new ChoiceList(*control);
      control->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
      control->setMinimumContentsLength(1);
      QObject::connect(control, &QComboBox::currentTextChanged, control,
                       [control](const QString& aText) { SetToolTip(*control, aText); });
    }
  }
}

int CameraControls::GetKindButton(CameraBridgeKind aKind) {
  switch (aKind) {
  case CameraBridgeKind::CLProtocol:
    return id::kCLProtocol;
  case CameraBridgeKind::GenCP:
    return id::kGenCP;
  case CameraBridgeKind::CameraFile:
    return id::kCameraFile;
  case CameraBridgeKind::None:
    break;
  }
  return id::kNone;
}

void CameraControls::ListPorts(const std::vector<KrDeviceSerial>& aPorts) {
  mPort = aPorts.empty() ? KrDeviceSerial::Invalid : aPorts.front();
  auto* const list = Find<QComboBox>(id::kDevicePort);
  if (!list)
    return;
  const QSignalBlocker blocker(*list);
  // What the user would choose from is no more.
  list->hidePopup();
  list->clear();
  for (const KrDeviceSerial port : aPorts)
    list->addItem(ToQString(GetPortName(port)), static_cast<int>(port));
  list->setCurrentIndex(aPorts.empty() ? -1 : 0);
  SetToolTip(*list, list->currentText());
}

bool CameraControls::TakePort() {
  const KrDeviceSerial before = std::exchange(mPort, GetChosenPort(Find<QComboBox>(id::kDevicePort)));
  return mPort != before;
}

void CameraControls::RestoreChoices() {
  if (auto* const list = Find<QComboBox>(id::kDevicePort))
    list->setCurrentIndex(list->findData(static_cast<int>(mPort)));
  CheckKind(mKind);
}

void CameraControls::CheckKind(CameraBridgeKind aKind) {
  mKind = aKind;
  Check(GetKindButton(aKind), true);
}

void CameraControls::Fill(int aList, const std::vector<KrString>& aTexts) const {
  auto* const list = Find<QComboBox>(aList);
  if (!list)
    return;
  const QSignalBlocker blocker(*list);
  list->hidePopup();
  list->clear();
  // Identifiers are long: the drop-down list has room for what the screen can show of them, and the tooltip tells the
  // selected one.
  int widest = 0;
  for (const KrString& text : aTexts) {
    const QString item = ToPlainLine(text, kMostLettersOfAChoice);
    list->addItem(item, ToItemData(text));
    widest = std::max(widest, list->fontMetrics().horizontalAdvance(item));
  }
  list->setCurrentIndex(aTexts.empty() ? -1 : 0);
  list->view()->setMinimumWidth(std::min(widest + kListMargin, list->screen()->availableGeometry().width()));
  SetToolTip(*list, list->currentText());
}

bool CameraControls::HasItems(int aList) const {
  const auto* const list = Find<QComboBox>(aList);
  return list && list->count() > 0;
}

int CameraControls::GetSelected(int aList) const {
  const auto* const list = Find<QComboBox>(aList);
  return list ? list->currentIndex() : -1;
}

KrString CameraControls::GetSelectedText(int aList) const {
  const auto* const list = Find<QComboBox>(aList);
  return list ? FromItemData(list->currentData().toByteArray()) : KrString();
}

void CameraControls::Select(int aList, const KrString& aText) const {
  if (auto* const list = Find<QComboBox>(aList))
    list->setCurrentIndex(list->findData(ToItemData(aText)));
}

void CameraControls::SetText(int aID, const QString& aText) const {
  if (auto* const label = Find<QLabel>(aID); label && label->text() != aText)
    label->setText(aText);
  else if (auto* const edit = Find<QLineEdit>(aID); edit && edit->text() != aText)
    edit->setText(aText);
}

QString CameraControls::GetText(int aID) const {
  if (const auto* const label = Find<QLabel>(aID))
    return label->text();
  const auto* const edit = Find<QLineEdit>(aID);
  return edit ? edit->text() : QString();
}

void CameraControls::Check(int aID, bool aIsOn) const {
  auto* const button = Find<QAbstractButton>(aID);
  if (!button)
    return;
  const QSignalBlocker blocker(*button);
  button->setChecked(aIsOn);
}

bool CameraControls::IsChecked(int aID) const {
  const auto* const button = Find<QAbstractButton>(aID);
  return button && button->isChecked();
}

void CameraControls::Explain(int aID, const QString& aText) const {
  if (auto* const control = Find<QWidget>(aID))
    SetToolTip(*control, aText);
}

void CameraControls::ShowStatistics(std::uint64_t aSent, std::uint64_t aReceived) const {
  SetText(id::kBytesSent, QStringLiteral("Bytes sent: %1").arg(aSent));
  SetText(id::kBytesReceived, QStringLiteral("Bytes received: %1").arg(aReceived));
}

void CameraControls::ShowNothing() const {
  SetText(id::kPath, {});
  SetText(id::kProbeStatus, QStringLiteral("Not found"));
  for (const int status : {id::kCameraFileStatus, id::kCLProtocolStatus, id::kGenCPStatus})
    SetText(status, QStringLiteral("Not initialized"));
  for (const int list : {id::kTemplate, id::kCLProtocolXML, id::kGenCPXML})
    Clear(list);
}

void CameraControls::DisableForeign(QWidget& aDialog) const {
  std::vector<QWidget*> own;
  for (const auto& row : kPlaces)
    own.push_back(Find<QWidget>(row.id));
  const auto isOwn = [&own](const QWidget* aControl) {
    return aControl && std::find(own.begin(), own.end(), aControl) != own.end();
  };
  for (QWidget* const control : aDialog.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    const auto* const label = qobject_cast<QLabel*>(control);
    const bool isShared = qobject_cast<QGroupBox*>(control) || (label && isOwn(label->buddy()));
    if (!isShared && !control->isWindow() && !isOwn(control))
      control->setEnabled(false);
  }
}

bool CameraControls::Enable(const CameraBridgeEnabling& aEnabling) {
  for (const auto& row : kEnabled) {
    if (auto* const control = Find<QWidget>(row.id))
      control->setEnabled(aEnabling.*row.isEnabled);
  }
  for (const int control : kCameraFileControls) {
    if (auto* const widget = Find<QWidget>(control))
      widget->setVisible(aEnabling.isCameraFileVisible);
  }
  const bool hadCameraFile = std::exchange(mHasCameraFile, aEnabling.isCameraFileVisible);
  return hadCameraFile != mHasCameraFile;
}

/// Another window's template is laid out as it says.
void CameraControls::LayOut(const QSize& aSize) const {
  if (!Find<QFrame>(id::kBrowserFrame))
    return;
  const CameraLayout layout = LayOutCameraBridge(GetMetrics(aSize));
  for (const auto& row : kPlaces) {
    const PixelRect& place = layout.*row.place;
    if (auto* const control = Find<QWidget>(row.id))
      control->setGeometry(place.left, place.top, place.GetWidth(), place.GetHeight());
  }
}

std::optional<QRect> CameraControls::GetBrowserPlace() const {
  const auto* const frame = Find<QFrame>(id::kBrowserFrame);
  if (!frame)
    return std::nullopt;
  return frame->geometry()
      .adjusted(kBrowserInset, kBrowserInset, -kBrowserInset, -kBrowserInset)
      .translated(kBrowserShift, kBrowserShift);
}

int CameraControls::GetWidth(int aID) const {
  const auto* const control = Find<QWidget>(aID);
  return control ? control->sizeHint().width() : 0;
}

CameraMetrics CameraControls::GetMetrics(const QSize& aSize) const {
  const QFontMetrics font(Find<QWidget>(id::kBrowserFrame)->font());
  const auto& button = *Find<QRadioButton>(id::kNone);
  const QStyle& style = *button.style();
  CameraMetrics metrics = {.width = aSize.width(), .height = aSize.height(), .hasCameraFile = mHasCameraFile};
  metrics.titleHeight = Find<QGroupBox>(id::kSetupBox)->contentsMargins().top();
  metrics.lineHeight = font.height();
  metrics.radioHeight = std::max(button.sizeHint().height(), Find<QCheckBox>(id::kPoCL)->sizeHint().height());
  metrics.fieldHeight =
      std::max(Find<QComboBox>(id::kSource)->sizeHint().height(), Find<QLineEdit>(id::kPath)->sizeHint().height());
  metrics.indent = style.pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, &button) +
                   style.pixelMetric(QStyle::PM_RadioButtonLabelSpacing, nullptr, &button);
  for (const int label : kLabels)
    metrics.labelWidth = std::max(metrics.labelWidth, GetWidth(label) + kLabelMargin);
  // Not the size hint: styles make that as wide as a button looks good, where there is room.
  for (const int control : kButtons) {
    const QString text = Find<QPushButton>(control)->text();
    metrics.buttonWidth = std::max(metrics.buttonWidth, font.size(Qt::TextShowMnemonic, text).width() + kButtonMargins);
  }
  metrics.browseWidth = font.horizontalAdvance(Find<QPushButton>(id::kBrowse)->text()) + kButtonMargins / 2;
  for (const int control : kSwitches)
    metrics.switchWidth = std::max(metrics.switchWidth, GetWidth(control));
  metrics.browserWidth = font.horizontalAdvance(QString::fromLatin1(kBrowserTexts)) + kBrowserButtons;
  metrics.statusWidth = font.horizontalAdvance(QString::fromLatin1(kUsualStatus));
  return metrics;
}

} // namespace krgui
