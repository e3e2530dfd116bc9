#include "serial/comportlist.h"

#include "krserial/krhostserialports.h"
#include "krserial/krtakencomports.h"
#include "logic/serial/hostportlist.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeyEvent>
#include <QSignalBlocker>

#include <algorithm>
#include <set>

namespace krgui {

namespace {

bool HasModifier(const QKeyEvent& aKey) {
  return (aKey.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != Qt::NoModifier;
}

/// A closed list of the toolkit's takes another entry by it, or opens.
bool IsKeyOfList(const QKeyEvent& aKey) {
  switch (aKey.key()) {
  case Qt::Key_F4:
    return true;
  case Qt::Key_Up:
  case Qt::Key_Down:
    return !HasModifier(aKey) || aKey.modifiers().testFlag(Qt::AltModifier);
  case Qt::Key_Home:
  case Qt::Key_End:
  case Qt::Key_PageUp:
  case Qt::Key_PageDown:
    return !HasModifier(aKey);
  default:
    // A text is looked for among the entries. Enter and the like are none.
    return !HasModifier(aKey) && !aKey.text().isEmpty() && aKey.text().front().isPrint();
  }
}

/// What a port is, for people.
QString FindText(const std::vector<KrHostSerialPort>& aPorts, std::uint32_t aNumber) {
  const auto found = std::find_if(aPorts.begin(), aPorts.end(),
                                  [aNumber](const KrHostSerialPort& aPort) { return aPort.number == aNumber; });
  return found == aPorts.end() ? QStringLiteral("Is made when it is chosen") : ToQString(found->text);
}

} // namespace

COMPortList::COMPortList(QComboBox& aList) : mList(aList) {
  mList.installEventFilter(this);
}

void COMPortList::Refresh() {
  // What the user would choose from is no more.
  mList.hidePopup();
  {
    const QSignalBlocker blocker(mList);
    Fill();
  }
  Restore();
  if (mOnRefreshed)
    mOnRefreshed();
}

std::uint32_t COMPortList::FindNewPort(const std::vector<std::uint32_t>& aListed) const {
  std::set<std::uint32_t> taken;
  // Where it is not known what is taken, nothing is offered.
  if (!mIsOfferingNewPort || !KrTakenCOMPorts::GetNumbers(taken).IsOK())
    return 0;
  taken.insert(aListed.begin(), aListed.end());
  if (mFindBridged)
    for (const std::uint32_t number : mFindBridged())
      taken.insert(number);
  return FindFreeCOMPortNumber(taken);
}

void COMPortList::Fill() {
  mList.clear();
  std::vector<KrHostSerialPort> ports;
  // A host that cannot be asked has none.
  (void)KrHostSerialPorts::List(ports);
  KrStringList names;
  for (const KrHostSerialPort& port : ports)
    names.Add(port.name);
  std::vector<std::uint32_t> numbers = GetCOMPortNumbers(names);
  if (const std::uint32_t free = FindNewPort(numbers); free > 0)
    numbers.insert(std::lower_bound(numbers.begin(), numbers.end(), free), free);
  for (const std::uint32_t number : numbers) {
    mList.addItem(ToQString(FormatCOMPort(number)), number);
    mList.setItemData(mList.count() - 1, ToPlainToolTip(FindText(ports, number)), Qt::ToolTipRole);
  }
}

bool COMPortList::IsEmpty() const {
  return mList.count() == 0;
}

void COMPortList::Select(const KrString& aName) {
  mShown = ToQString(aName);
  Restore();
}

void COMPortList::Restore() {
  const QSignalBlocker blocker(mList);
  mList.setCurrentIndex(mShown.isEmpty() ? -1 : mList.findText(mShown));
}

std::optional<std::uint32_t> COMPortList::GetSelected() const {
  const QVariant data = mList.currentData();
  return data.isValid() ? std::optional<std::uint32_t>(data.toUInt()) : std::nullopt;
}

bool COMPortList::eventFilter(QObject* aWatched, QEvent* aEvent) {
  const bool isPress = aEvent->type() == QEvent::MouseButtonPress;
  const bool isKey = aEvent->type() == QEvent::KeyPress && IsKeyOfList(static_cast<const QKeyEvent&>(*aEvent));
  // The list's view is made when it is first asked for, which other events come in the midst of.
  if ((isPress || isKey) && mList.isEnabled() && !mList.view()->isVisible()) {
    Refresh();
    if (isKey)
      mList.showPopup();
    return isKey;
  }
  return QObject::eventFilter(aWatched, aEvent);
}

} // namespace krgui
