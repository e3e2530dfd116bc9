// The browser's window and its dialogs as assistive technology finds them: all that the keyboard reaches is in the tree
// of accessible objects, with a name and a role.

#include "browserfixture.h"

#include "browser/settingscomparisondialog.h"
#include "frame/progressdialog.h"
#include "duringmodalloop.h"

#include <QAccessible>

#include <map>
#include <thread>

namespace krgui {

namespace {

using Found = std::map<const QObject*, QAccessibleInterface*>;

/// All objects of a tree that stand for widgets. Children and parents know of each other.
void Walk(QAccessibleInterface& aParent, Found& aFound) {
  if (aParent.object() != nullptr)
    aFound[aParent.object()] = &aParent;
  for (int index = 0; index < aParent.childCount(); ++index) {
    QAccessibleInterface* child = aParent.child(index);
    ASSERT_NE(child, nullptr) << index;
    EXPECT_EQ(child->parent(), &aParent) << child->text(QAccessible::Name).toStdString();
    EXPECT_EQ(aParent.indexOfChild(child), index) << child->text(QAccessible::Name).toStdString();
    Walk(*child, aFound);
  }
}

bool TakesFocus(const QWidget& aWidget) {
  return aWidget.isVisible() && aWidget.isEnabled() && aWidget.focusPolicy() != Qt::NoFocus &&
         aWidget.focusProxy() == nullptr;
}

/// The names of all that takes the focus, in the order of the widgets, and what is wrong with them.
QStringList GetNames(QWidget& aWindow) {
  Found found;
  Walk(*QAccessible::queryAccessibleInterface(&aWindow), found);
  QStringList names;
  for (const QWidget* widget : aWindow.findChildren<QWidget*>()) {
    // What is a part of a control is reached through that.
    if (!TakesFocus(*widget) || widget->window() != &aWindow)
      continue;
    const auto accessible = found.find(widget);
    const char* className = widget->metaObject()->className();
    if (accessible == found.end()) {
      ADD_FAILURE() << className << " " << widget->objectName().toStdString() << " is not in the tree.";
      continue;
    }
    const QString name = accessible->second->text(QAccessible::Name);
    EXPECT_FALSE(name.isEmpty()) << className << " " << widget->objectName().toStdString();
    EXPECT_NE(accessible->second->role(), QAccessible::NoRole) << name.toStdString();
    EXPECT_NE(accessible->second->role(), QAccessible::Client) << name.toStdString();
    names << name;
  }
  return names;
}

class BrowserAccessibility : public GenBrowserTest {};

} // namespace

TEST_F(BrowserAccessibility, WindowWithSearchRowAndEditor_HasANameAndARoleForAllThatTakesTheFocus) {
  Open();
  ASSERT_TRUE(AwaitValue("Width", "0"));
  Press(Qt::Key_F, Qt::ControlModifier);
  mWindow.GetGrid().setFocus();
  mWindow.GetGrid().Select(mWindow.FindRow("Width"));
  Press(Qt::Key_Return);
  ASSERT_TRUE(WaitFor([this] { return mWindow.GetGrid().GetEdited() == mWindow.FindRow("Width"); }));

  const QStringList names = GetNames(*mWindow.GetWidget());

  for (const char* name : {"Properties", "Expand", "Collapse", "Errors", "Search", "Move to previous occurence",
                           "Move to next occurence", "Close search", "Features", "Description", "Width"})
    EXPECT_TRUE(names.contains(QLatin1String(name))) << name << " of " << names.join(',').toStdString();
}

TEST_F(BrowserAccessibility, Splitter_IsNamedAndHasARole) {
  Open();
  QWidget* splitter = mWindow.GetWidget()->findChild<QWidget*>(QStringLiteral("splitter"));
  ASSERT_NE(splitter, nullptr);

  const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(splitter);

  EXPECT_EQ(accessible->text(QAccessible::Name), "Boundary between features and description");
  EXPECT_EQ(accessible->role(), QAccessible::Splitter);
}

TEST_F(BrowserAccessibility, OptionsDialog_HasANameAndARoleForAllThatTakesTheFocus) {
  Open();
  QStringList names;
  DuringNextModalLoop([&](QWidget& aDialog) {
    names = GetNames(aDialog);
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  mWindow.Click("Properties");

  EXPECT_EQ(names.size(), 5) << names.join(',').toStdString();
}

TEST_F(BrowserAccessibility, DialogsOfSettings_HaveANameAndARoleForAllThatTakesTheFocus) {
  SettingsDifference difference;
  difference.settings.resize(2);
  difference.settings[0].kind = ComparedSetting::Kind::Same;
  difference.settings[0].name = "Width";
  difference.settings[1].kind = ComparedSetting::Kind::Different;
  difference.settings[1].name = "Height";
  QStringList names;
  const auto look = [&names](QWidget& aDialog) {
    names = GetNames(aDialog);
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  };

  DuringNextModalLoop(look);
  (void)SettingsComparisonDialog(nullptr, "camera.krs", difference).Run();
  EXPECT_EQ(names.size(), 7) << names.join(',').toStdString();

  DuringNextModalLoop(look);
  (void)ProgressDialog(nullptr, "Save Features", "Reading the features")
      .Run([](const KrGenProgress& aProgress) {
        while (aProgress(0, 1))
          std::this_thread::yield();
      });
  EXPECT_EQ(names, QStringList{"Cancel"});
}

} // namespace krgui
