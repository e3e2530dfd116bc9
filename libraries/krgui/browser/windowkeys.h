#pragma once
// Keys that have a meaning anywhere in a window, whatever they mean to the program around it. What they do is left to
// the window.

#include <QKeyCombination>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <vector>

class QKeyEvent;

namespace krgui {

/// Takes its keys before shortcuts are looked for: shortcuts of the same key, in the program's window or in another
/// part of it, would be called in turn. Keys that repeat while they are held act once.
///
/// Thread: user interface. Ownership: the window's, whose widgets it only looks at.
class WindowKeys final : public QObject {
public:
  struct Key {
    QPointer<QWidget> place; ///< It has its meaning here and in all that is in it, but for windows.
    QKeyCombination key;
    std::function<void()> act;                ///< May end the keys.
    std::function<bool()> isWanted = nullptr; ///< Whether it has a meaning at the moment; always where there is none.
  };

  WindowKeys();

  void Add(Key aKey) { mKeys.push_back(std::move(aKey)); }

  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  const Key* Find(const QWidget& aFocus, const QKeyEvent& aEvent) const;

  std::vector<Key> mKeys;
};

} // namespace krgui
