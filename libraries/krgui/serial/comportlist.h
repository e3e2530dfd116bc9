#pragma once
// The list of the host's COM ports: filled anew whenever the user opens it. As every choice ends a link and starts
// another one, there is none while it is closed: keys open it. What a choice does is left to the window.

#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QComboBox;
class KrString;

namespace krgui {

/// Thread: user interface. Ownership: the window's; borrows the list, and ends before it.
class COMPortList : public QObject {
public:
  /// The numbers of the ports that bridges have, be they there or not.
  using FindBridged = std::function<std::vector<std::uint32_t>()>;

  explicit COMPortList(QComboBox& aList);

  /// Whether a port that the host lacks is offered, too. Its number stands for no other port, not even for one that is
  /// away.
  void SetOfferingNewPort(bool aIsOn) { mIsOfferingNewPort = aIsOn; }
  /// Called while the list is filled.
  void SetFindBridged(FindBridged aFindBridged) { mFindBridged = std::move(aFindBridged); }
  /// Called when the list was filled anew, which may have changed what is selected.
  void SetOnRefreshed(std::function<void()> aOnRefreshed) { mOnRefreshed = std::move(aOnRefreshed); }
  /// Lists what the host has. What Select selected is selected, as far as it is there.
  void Refresh();
  bool IsEmpty() const;
  /// Selects the port of a name, for example "COM3"; none for no name, and where it is not listed.
  void Select(const KrString& aName);
  /// What is selected becomes what was selected by Select.
  void Restore();
  /// The number that is selected.
  std::optional<std::uint32_t> GetSelected() const;

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  void Fill();
  /// 0 where none is offered.
  std::uint32_t FindNewPort(const std::vector<std::uint32_t>& aListed) const;

  QComboBox& mList;
  bool mIsOfferingNewPort = false;
  FindBridged mFindBridged;
  std::function<void()> mOnRefreshed;
  QString mShown; ///< What Select selected, whether it is listed or not.
};

} // namespace krgui
