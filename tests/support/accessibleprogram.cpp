#include "accessibleprogram.h"

#include "await.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusVariant>
#include <QStringList>

#include <gtest/gtest.h>

namespace {

/// A program on a busy machine answers when it gets a processor; one that has ended is gone from the bus at once.
const int kAnswerLimitMs = krtest::GetGenerousMs();

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
const QString kRoot = QStringLiteral("/org/a11y/atspi/accessible/root");

/// Places in a set of states.
enum State { kActive = 1, kChecked = 4, kEnabled = 8, kFocused = 12, kShowing = 25 };

QString MakeConnectionName() {
  static int number = 0;
  return QStringLiteral("accessibility-%1").arg(++number);
}

QDBusConnection Connect(const QString& aName) {
  const QDBusMessage answer = QDBusConnection::sessionBus().call(
      QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                     QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")),
      QDBus::Block, kAnswerLimitMs);
  EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage)
      << "There is no accessibility bus: " << answer.errorMessage().toStdString();
  return QDBusConnection::connectToBus(answer.arguments().value(0).toString(), aName);
}

bool Has(const QList<quint32>& aStates, State aState) {
  return !aStates.isEmpty() && (aStates.constFirst() & (1U << aState)) != 0;
}

} // namespace

AccessibleProgram::AccessibleProgram(qint64 aProcess)
    : mProcess(aProcess), mConnectionName(MakeConnectionName()), mBus(Connect(mConnectionName)) {
  EXPECT_TRUE(mBus.isConnected());
}

AccessibleProgram::~AccessibleProgram() {
  QDBusConnection::disconnectFromBus(mConnectionName);
}

bool AccessibleProgram::FindService() {
  if (!mService.isEmpty() || !mBus.interface())
    return !mService.isEmpty();
  const QDBusReply<QStringList> names = mBus.interface()->registeredServiceNames();
  for (const QString& name : names.value())
    if (name.startsWith(QLatin1Char(':')) && mBus.interface()->servicePid(name).value() == mProcess)
      mService = name;
  return !mService.isEmpty();
}

QVariant AccessibleProgram::Ask(const QString& aPath, const char* aInterface, const char* aQuestion,
                                const QVariantList& aWith) {
  QDBusMessage question =
      QDBusMessage::createMethodCall(mService, aPath, QLatin1String(aInterface), QLatin1String(aQuestion));
  question.setArguments(aWith);
  const QDBusMessage answer = mBus.call(question, QDBus::Block, kAnswerLimitMs);
  return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0) : QVariant();
}

QVariant AccessibleProgram::GetProperty(const QString& aPath, const char* aInterface, const char* aName) {
  const QVariant answer = Ask(aPath, "org.freedesktop.DBus.Properties", "Get",
                              {QString::fromLatin1(aInterface), QString::fromLatin1(aName)});
  return answer.isValid() ? answer.value<QDBusVariant>().variant() : QVariant();
}

QStringList AccessibleProgram::GetChildren(const QString& aPath) {
  QStringList paths;
  const QVariant answer = Ask(aPath, kAccessible, "GetChildren");
  if (!answer.isValid())
    return paths;
  const auto children = answer.value<QDBusArgument>();
  children.beginArray();
  while (!children.atEnd()) {
    QString service;
    QDBusObjectPath path;
    children.beginStructure();
    children >> service >> path;
    children.endStructure();
    paths += path.path();
  }
  children.endArray();
  return paths;
}

std::optional<AccessibleItem> AccessibleProgram::Look(const QString& aPath) {
  const auto states = qdbus_cast<QList<quint32>>(Ask(aPath, kAccessible, "GetState"));
  if (!Has(states, kShowing))
    return std::nullopt;
  return AccessibleItem{.path = aPath,
                        .role = Ask(aPath, kAccessible, "GetRoleName").toString(),
                        .name = GetProperty(aPath, kAccessible, "Name").toString(),
                        .isActive = Has(states, kActive),
                        .isChecked = Has(states, kChecked),
                        .isEnabled = Has(states, kEnabled),
                        .isFocused = Has(states, kFocused)};
}

std::optional<AccessibleItem> AccessibleProgram::FindBelow(const QString& aPath, const Choice& aChoice) {
  const QStringList children = GetChildren(aPath);
  for (const QString& child : children) {
    const std::optional<AccessibleItem> item = Look(child);
    if (!item)
      continue;
    if (aChoice(*item))
      return item;
    if (std::optional<AccessibleItem> found = FindBelow(child, aChoice))
      return found;
  }
  return std::nullopt;
}

std::optional<AccessibleItem> AccessibleProgram::Find(const Choice& aChoice) {
  return FindService() ? FindBelow(kRoot, aChoice) : std::nullopt;
}

QList<AccessibleItem> AccessibleProgram::GetItems() {
  QList<AccessibleItem> items;
  Find([&](const AccessibleItem& aItem) {
    items += aItem;
    return false;
  });
  return items;
}

QList<AccessibleItem> AccessibleProgram::GetItems(const AccessibleItem& aWhole) {
  QList<AccessibleItem> items;
  FindBelow(aWhole.path, [&](const AccessibleItem& aItem) {
    items += aItem;
    return false;
  });
  return items;
}

QRect AccessibleProgram::GetPlace(const AccessibleItem& aItem) {
  const QVariant answer = Ask(aItem.path, "org.a11y.atspi.Component", "GetExtents", {0U});
  return answer.isValid() ? qdbus_cast<QRect>(answer) : QRect();
}

QString AccessibleProgram::GetText(const AccessibleItem& aItem) {
  return Ask(aItem.path, "org.a11y.atspi.Text", "GetText", {0, -1}).toString();
}

QString AccessibleProgram::GetDescription(const AccessibleItem& aItem) {
  return GetProperty(aItem.path, kAccessible, "Description").toString();
}

std::optional<double> AccessibleProgram::GetValue(const AccessibleItem& aItem) {
  const QVariant value = GetProperty(aItem.path, "org.a11y.atspi.Value", "CurrentValue");
  return value.isValid() ? std::optional(value.toDouble()) : std::nullopt;
}
