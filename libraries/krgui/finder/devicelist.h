#pragma once
// An information list: names and values in rows, where the colour behind a value says what it is worth. It shows the
// rows that it is given; a row that did not change is not touched.

#include "logic/finder/informationrow.h"

#include <QPointer>
#include <QString>

#include <memory>
#include <vector>

class QTreeWidget;

namespace krgui {

/// Thread: user interface. Ownership: works on the dialog's control, which may end before it.
class DeviceList {
public:
  /// aWidth is what the columns share: 0.4 for the names, 0.6 for the values.
  DeviceList(QTreeWidget& aWidget, int aWidth);
  ~DeviceList();
  DeviceList(const DeviceList&) = delete;
  DeviceList& operator=(const DeviceList&) = delete;

  void Show(const std::vector<InfoRow>& aRows);
  void Clear() { Show({}); }

private:
  class Watcher;

  /// True when a text was another one.
  bool ShowRow(int aIndex, const InfoRow& aRow);
  void FitValues();
  void CopyRow() const;

  const QPointer<QTreeWidget> mWidget;
  const std::unique_ptr<Watcher> mWatcher;
};

} // namespace krgui
