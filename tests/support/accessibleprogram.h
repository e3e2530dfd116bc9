#pragma once
// The windows of another program as assistive technology is told of them: what a test knows of a program that it runs
// as its user does. Deeds are left to the mouse and the keyboard (programuser.h). Needs scripts/with-accessibility.sh.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QRect>
#include <QString>
#include <QVariantList>

#include <functional>
#include <optional>

/// A window, a control, a text, an entry of a menu.
struct AccessibleItem {
  QString path; ///< On the bus, as long as the item exists.
  QString role; ///< As AT-SPI has it: "frame", "dialog", "label", "button", "menu item", "table cell" …
  QString name;
  bool isActive = false; ///< Of windows: it has the keyboard.
  bool isChecked = false;
  bool isEnabled = false;
  bool isFocused = false;
};

/// Looks at one program by its process.
///
/// Thread: one at a time. Ownership: owns its connection to the bus.
class AccessibleProgram {
public:
  using Choice = std::function<bool(const AccessibleItem&)>;

  /// Fails the test where there is no accessibility bus.
  explicit AccessibleProgram(qint64 aProcess);
  ~AccessibleProgram();
  AccessibleProgram(const AccessibleProgram&) = delete;
  AccessibleProgram& operator=(const AccessibleProgram&) = delete;

  /// Whether the program has told of itself.
  bool IsThere() { return FindService(); }
  /// The first item on the screen that is chosen, a window before what is in it; nothing where there is none, or no
  /// program yet.
  std::optional<AccessibleItem> Find(const Choice& aChoice);
  /// All that are on the screen.
  QList<AccessibleItem> GetItems();
  /// Those within one.
  QList<AccessibleItem> GetItems(const AccessibleItem& aWhole);

  /// Where it is on the screen; null where it is gone.
  QRect GetPlace(const AccessibleItem& aItem);
  /// What stands in a field; its name stands beside it.
  QString GetText(const AccessibleItem& aItem);
  QString GetDescription(const AccessibleItem& aItem);
  /// Of a number that can be set.
  std::optional<double> GetValue(const AccessibleItem& aItem);

private:
  bool FindService();
  /// The first of what is answered; invalid where the item is gone.
  QVariant Ask(const QString& aPath, const char* aInterface, const char* aQuestion, const QVariantList& aWith = {});
  QVariant GetProperty(const QString& aPath, const char* aInterface, const char* aName);
  QStringList GetChildren(const QString& aPath);
  /// Nothing where it is gone or not on the screen.
  std::optional<AccessibleItem> Look(const QString& aPath);
  std::optional<AccessibleItem> FindBelow(const QString& aPath, const Choice& aChoice);

  const qint64 mProcess;
  const QString mConnectionName;
  QDBusConnection mBus;
  QString mService;
};
