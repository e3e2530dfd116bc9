// The viewer's keys: each means one thing wherever the keyboard is, and those that end something do so in every window.

#include "viewerfixture.h"

#include <QDialog>
#include <QFile>
#include <QKeyEvent>
#include <QMap>
#include <QPointer>
#include <QShortcut>

using krviewer::Panel;

namespace {

class ViewerKeysTest : public ViewerTest {
protected:
  /// Which entries have a key.
  using Keys = QMap<QKeySequence, QStringList>;
  static Keys GetMenuKeys(const QWidget& aWindow) {
    Keys keys;
    for (const QAction* const action : aWindow.actions())
      if (!action->shortcut().isEmpty())
        keys[action->shortcut()] += action->text();
    return keys;
  }
  /// Whether the key is another one's than the menus' while the keyboard is there.
  static bool IsTaken(QWidget& aFocus, const QKeySequence& aKey) {
    QKeyEvent event(QEvent::ShortcutOverride, aKey[0].key(), aKey[0].keyboardModifiers());
    event.ignore();
    QApplication::sendEvent(&aFocus, &event);
    return event.isAccepted();
  }
  /// What can have the keyboard, at the moment or later.
  static QWidgetList ListFocusable(const QWidget& aWindow) {
    QWidgetList widgets;
    for (QWidget* const widget : aWindow.findChildren<QWidget*>())
      if (widget->focusPolicy() != Qt::NoFocus)
        widgets += widget;
    return widgets;
  }
  /// What takes one of the keys in a window, in words.
  static QStringList FindTaken(const QWidget& aWindow, const QList<QKeySequence>& aKeys) {
    QStringList taken;
    for (QWidget* const widget : ListFocusable(aWindow))
      for (const QKeySequence& key : aKeys)
        if (IsTaken(*widget, key))
          taken += key.toString() + " in " + widget->metaObject()->className() + ' ' + widget->objectName();
    for (const QShortcut* const shortcut : aWindow.findChildren<QShortcut*>())
      if (aKeys.contains(shortcut->key()))
        taken += shortcut->key().toString() + " of a shortcut";
    return taken;
  }
  void ShowEverything() {
    for (const Panel panel : {Panel::Features, Panel::StreamFeatures, Panel::TransportFeatures, Panel::Histogram,
                              Panel::LineProfile, Panel::Intervals, Panel::Recording})
      GetPage()->GetPanels().Show(panel, true);
    ASSERT_TRUE(Await([this] { return GetPage()->GetDisplay().GetMapping().has_value(); }));
    GetPage()->GetRegion().Begin();
    ASSERT_TRUE(Await([this] { return GetPage()->GetRegion().IsEditing(); }));
    ASSERT_TRUE(Await([this] { return GetPage()->GetFeatures().GetWindow().GetWidget() != nullptr; }));
  }
};

/// A window that an entry opens, without menus of its own.
class WindowWithoutMenus : public ViewerKeysTest, public testing::WithParamInterface<const char*> {
protected:
  void SetUp() override {
    QFile guide(mGuideFile);
    ASSERT_TRUE(guide.open(QIODevice::WriteOnly) && guide.write("# Guide\n") > 0 && guide.flush());
    Begin();
    OpenStreaming();
    auto* const entry = GetWindow().findChild<QAction*>(GetParam());
    ASSERT_NE(entry, nullptr);
    // Cameras behind a device's ports may be asked first, which takes the entry away for a moment.
    ASSERT_TRUE(Await([&] {
      if (QWidget* const active = QApplication::activeWindow(); active && active != &GetWindow())
        return true;
      entry->trigger();
      return false;
    }));
    mOpened = QApplication::activeWindow();
  }

  QPointer<QWidget> mOpened;
};

INSTANTIATE_TEST_SUITE_P(Entries, WindowWithoutMenus,
                         testing::Values("terminal", "serialBridges", "cameraBridges", "find", "ipConfiguration",
                                         "keys", "guide", "about"),
                         [](const auto& aInfo) { return std::string(aInfo.param); });

const QList<QKeySequence> kEndKeys = {QKeySequence(Qt::CTRL | Qt::Key_Q), QKeySequence(Qt::CTRL | Qt::Key_W)};

} // namespace

TEST_F(ViewerKeysTest, Menus_HaveEachKeyOnce) {
  Begin();

  const Keys keys = GetMenuKeys(GetWindow());

  EXPECT_GT(keys.size(), 25);
  for (const QStringList& entries : keys)
    EXPECT_EQ(entries.size(), 1) << entries.join(" and ").toStdString();
}

TEST_F(ViewerKeysTest, KeysOfTheMenus_AreTakenByNothingOnThePage) {
  Begin();
  OpenStreaming();
  ASSERT_NO_FATAL_FAILURE(ShowEverything());
  QWidget& browser = *GetPage()->GetFeatures().GetWindow().GetWidget();
  ASSERT_FALSE(ListFocusable(browser).isEmpty());
  for (const QKeySequence& own :
       {QKeySequence(Qt::Key_F6), QKeySequence(Qt::Key_F8), QKeySequence(Qt::CTRL | Qt::Key_F)})
    ASSERT_TRUE(IsTaken(*ListFocusable(browser).constFirst(), own)) << own.toString().toStdString();

  const QStringList taken = FindTaken(GetWindow(), GetMenuKeys(GetWindow()).keys());

  EXPECT_TRUE(taken.isEmpty()) << taken.join('\n').toStdString();
}

TEST_F(ViewerKeysTest, SingleFrame_TakenByItsKeyFromWithinAFeatureBrowser) {
  Begin();
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->GetFeatures().GetWindow().GetWidget() != nullptr; }));
  ASSERT_TRUE(Choose("stop"));
  ASSERT_TRUE(Await([this] { return IsOffered("single"); }));
  const std::uint64_t frames = GetPage()->GetProgress().figures.GetFrames();
  ListFocusable(*GetPage()->GetFeatures().GetWindow().GetWidget()).constFirst()->setFocus();

  Press(Qt::Key_F9);

  EXPECT_TRUE(Await([&] { return GetPage()->GetProgress().figures.GetFrames() == frames + 1; }));
}

TEST_P(WindowWithoutMenus, ControlQ_EndsTheViewer) {
  Press(Qt::Key_Q, Qt::ControlModifier);

  EXPECT_TRUE(Await([this] { return mViewer->IsOver(); }));
}

TEST_P(WindowWithoutMenus, ControlW_ClosesItAlone) {
  Press(Qt::Key_W, Qt::ControlModifier);

  EXPECT_TRUE(Await([this] { return !mOpened || !mOpened->isVisible(); }));
  EXPECT_FALSE(mViewer->IsOver());
  EXPECT_TRUE(GetPage() && GetPage()->IsStreaming());
}

TEST_P(WindowWithoutMenus, KeysThatEndIt_AreTakenByNothingInIt) {
  EXPECT_FALSE(ListFocusable(*mOpened).isEmpty());

  const QStringList taken = FindTaken(*mOpened, kEndKeys);

  EXPECT_TRUE(taken.isEmpty()) << taken.join('\n').toStdString();
}

TEST_F(ViewerKeysTest, QuestionThatWaitsForAnAnswer_KeepsItsWindow) {
  Begin();
  QDialog question(&GetWindow());
  question.open();
  ASSERT_TRUE(Await([&] { return question.isActiveWindow(); }));

  Press(Qt::Key_W, Qt::ControlModifier);
  Press(Qt::Key_Q, Qt::ControlModifier);
  QCoreApplication::processEvents();

  EXPECT_TRUE(question.isVisible());
  EXPECT_FALSE(mViewer->IsOver());
}
