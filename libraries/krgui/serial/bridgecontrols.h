#pragma once
// The controls of one opening of the serial bridge manager: finds, names and lays them out, and shows in them what it
// is told. What they do is left to the window; what is shown of a bridge is decided by logic/serial/bridgedisplay.

#include "logic/serial/bridgedisplay.h"
#include "logic/serial/bridgelayout.h"
#include "logic/serial/serialbridgelist.h"
#include "serial/comportlist.h"
#include "serial/serialbridgeids.h"

#include <QComboBox>
#include <QFont>
#include <QPushButton>
#include <QRadioButton>

#include <array>
#include <functional>

class QSize;
class QWidget;

namespace krgui {

/// Thread: user interface. Ownership: the widgets belong to the dialog, which must outlive this object.
class BridgeControls {
public:
  using Lookup = std::function<QWidget*(int aID)>;

  BridgeControls(const QWidget& aDialog, Lookup aLookup);
  BridgeControls(const BridgeControls&) = delete;
  BridgeControls& operator=(const BridgeControls&) = delete;

  QComboBox& GetPortList() const { return Get<QComboBox>(bridgeid::kDevicePort); }
  QComboBox& GetCOMPortControl() const { return Get<QComboBox>(bridgeid::kCOMPort); }
  COMPortList& GetCOMPortList() { return mCOMPorts; }
  /// In the order of the kinds' numbers.
  std::array<QRadioButton*, 3> GetKindButtons() const;
  QPushButton& GetConfigureButton() const { return Get<QPushButton>(bridgeid::kConfigure); }
  QPushButton& GetResetButton() const { return Get<QPushButton>(bridgeid::kReset); }

  /// Lists the ports anew. What was selected is selected again, unless it was the first one.
  void ListPorts(const SerialBridgeList::Bridges& aBridges);
  /// Invalid without a selection.
  KrDeviceSerial GetSelectedPort() const;

  void CheckKind(BridgeKind aKind);
  /// Checks again what was checked by CheckKind.
  void RestoreKind() { CheckKind(mKind); }

  void ShowDescription(const KrString& aText) const;
  void ShowCameraLinkName(const KrString& aText) const;
  void ShowState(const KrString& aText) const;
  /// Rewrites what has changed alone, so that nothing flickers; as does ShowBaudRates. Null for no bridge.
  void ShowStatistics(const SerialBridge* aBridge) const;
  void ShowBaudRates(const SerialBridge* aBridge) const;
  /// By the kind that is checked, and what is selected.
  void Enable() const;

  void LayOut(const QSize& aSize) const;

private:
  template <typename Control>
  Control& Get(int aID) const {
    return static_cast<Control&>(*mLookup(aID));
  }
  void NameControls() const;
  void SetText(int aLabel, const KrString& aText) const;
  BridgeMetrics GetMetrics(const QSize& aSize) const;

  Lookup mLookup;
  COMPortList mCOMPorts;
  QFont mNormalFont;
  QFont mBoldFont;
  BridgeKind mKind = BridgeKind::None;
};

} // namespace krgui
