#pragma once
// The controls of one opening of the camera bridge manager: finds, names and lays them out, and shows in them what it
// is told. A control that the template lacks is left out. What they do is left to the window.

#include "camerabridge/camerabridgeids.h"
#include "krbase/krstring.h"
#include "krserial/krdeviceserial.h"
#include "logic/camerabridge/camerabridgestate.h"
#include "logic/camerabridge/cameralayout.h"

#include <QString>
#include <QWidget>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QComboBox;
class QPushButton;
class QRect;
class QSize;

namespace krgui {

/// Thread: user interface. Ownership: the widgets belong to the dialog, which must outlive this object.
class CameraControls {
public:
  using Lookup = std::function<QWidget*(int aID)>;

  explicit CameraControls(Lookup aLookup);
  CameraControls(const CameraControls&) = delete;
  CameraControls& operator=(const CameraControls&) = delete;

  /// Null where the template has none of this class.
  template <typename Control>
  Control* Find(int aID) const {
    return qobject_cast<Control*>(mLookup(aID));
  }
  static constexpr std::array kKinds = {CameraBridgeKind::None, CameraBridgeKind::CLProtocol, CameraBridgeKind::GenCP,
                                        CameraBridgeKind::CameraFile};
  /// The id of a kind's radio button.
  static int GetKindButton(CameraBridgeKind aKind);

  /// Lists ports and takes the first one.
  void ListPorts(const std::vector<KrDeviceSerial>& aPorts);
  /// Takes the port that is chosen in the list; false where it is the same as before.
  bool TakePort();
  /// The port that was taken last; Invalid for none.
  KrDeviceSerial GetPort() const { return mPort; }
  void CheckKind(CameraBridgeKind aKind);
  /// Shows again the port that was taken and the kind that was checked last.
  void RestoreChoices();

  /// Fills a list and selects its first item. An item shows what one line can of its text.
  void Fill(int aList, const std::vector<KrString>& aTexts) const;
  bool Has(int aID) const { return mLookup(aID) != nullptr; }
  void Clear(int aList) const { Fill(aList, {}); }
  bool HasItems(int aList) const;
  /// -1 without a selection.
  int GetSelected(int aList) const;
  /// As it was filled in, whatever is shown of it; empty without a selection.
  KrString GetSelectedText(int aList) const;
  /// The item that was filled in with exactly this text; none where there is no such item.
  void Select(int aList, const KrString& aText) const;

  /// Of a label or an edit; one line, whatever a camera says.
  void SetText(int aID, const QString& aText) const;
  QString GetText(int aID) const;
  /// Tells nobody.
  void Check(int aID, bool aIsOn) const;
  bool IsChecked(int aID) const;
  /// What a control's tooltip says; nothing for the empty text.
  void Explain(int aID, const QString& aText) const;
  void ShowStatistics(std::uint64_t aSent, std::uint64_t aReceived) const;
  /// As at the beginning of a port's showing.
  void ShowNothing() const;

  /// Disables what another window's template has besides: it does nothing here.
  void DisableForeign(QWidget& aDialog) const;
  /// Shows, hides, enables and disables. True where the layout becomes another one.
  bool Enable(const CameraBridgeEnabling& aEnabling);
  void LayOut(const QSize& aSize) const;
  /// Where the feature browser goes; nothing where the template has no place for it.
  std::optional<QRect> GetBrowserPlace() const;

private:
  CameraMetrics GetMetrics(const QSize& aSize) const;
  int GetWidth(int aID) const;

  Lookup mLookup;
  KrDeviceSerial mPort = KrDeviceSerial::Invalid;
  CameraBridgeKind mKind = CameraBridgeKind::None;
  bool mHasCameraFile = true;
};

} // namespace krgui
