#pragma once
// The list of the host's COM ports: filled anew whenever the user opens it, and left alone by the mouse wheel, as every
// choice starts a link. What a choice does is left to the window.

#include <QObject>

#include <cstdint>
#include <optional>

class QComboBox;
class KrString;

namespace krgui {

/// Thread: user interface. Ownership: the window's; borrows the list, and ends before it.
class COMPortList : public QObject {
public:
  explicit COMPortList(QComboBox& aList);

  /// Whether a port that the host lacks is offered, too.
  void SetOfferingNewPort(bool aIsOn) { mIsOfferingNewPort = aIsOn; }
  /// Lists what the host has; what is selected stays so, if it is still there.
  void Refresh();
  bool IsEmpty() const;
  /// Selects the port of a name, for example "COM3"; none where it is not listed.
  void Select(const KrString& aName);
  /// What is selected becomes what was selected by Select.
  void Restore();
  /// The number that is selected.
  std::optional<std::uint32_t> GetSelected() const;

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  void Fill();

  QComboBox& mList;
  bool mIsOfferingNewPort = false;
  std::optional<std::uint32_t> mShown; ///< What Select selected.
};

} // namespace krgui
