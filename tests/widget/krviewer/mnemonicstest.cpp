// The viewer by its letters: whatever can be chosen has a key, and no key has two meanings where the user is.

#include "viewerfixture.h"

#include <QKeySequence>
#include <QMap>
#include <QMenu>
#include <QMenuBar>

namespace {

using krviewer::Panel;

QString GetLetter(const QString& aText) {
  return QKeySequence::mnemonic(aText).toString();
}

QMap<QString, QString> FindLetters(const QList<QAction*>& aEntries) {
  QMap<QString, QString> letters;
  for (const QAction* const entry : aEntries) {
    const QString letter = GetLetter(entry->text());
    if (entry->isSeparator() || letter.isEmpty())
      continue;
    EXPECT_FALSE(letters.contains(letter)) << entry->text().toStdString() << " and " << letters[letter].toStdString();
    letters[letter] = entry->text();
  }
  return letters;
}

class Mnemonics : public ViewerTest {
protected:
  /// No two of a part of the window have one letter, and none has a menu's.
  void ExpectOwnLetters(const QWidget& aPart) {
    QMap<QString, QString> letters = FindLetters(GetWindow().menuBar()->actions());
    ASSERT_FALSE(letters.isEmpty());
    int count = 0;
    const auto take = [&](const QString& aText) {
      const QString letter = GetLetter(aText);
      if (letter.isEmpty())
        return;
      EXPECT_FALSE(letters.contains(letter)) << aText.toStdString() << " and " << letters[letter].toStdString();
      letters[letter] = aText;
      ++count;
    };
    for (const auto* const button : aPart.findChildren<QAbstractButton*>())
      if (button->isVisible())
        take(button->text());
    for (const auto* const label : aPart.findChildren<QLabel*>())
      if (label->isVisible() && label->buddy())
        take(label->text());
    EXPECT_GT(count, 0);
  }
};

} // namespace

TEST_F(Mnemonics, EntriesOfAllMenus_HaveALetterOfTheirOwn) {
  Begin();
  OpenStreaming();

  int entries = 0;
  for (const QAction* const title : GetWindow().menuBar()->actions()) {
    SCOPED_TRACE(title->text().toStdString());
    ASSERT_NE(title->menu(), nullptr);
    FindLetters(title->menu()->actions());
    for (const QAction* const entry : title->menu()->actions()) {
      if (entry->isSeparator())
        continue;
      EXPECT_FALSE(GetLetter(entry->text()).isEmpty()) << entry->text().toStdString();
      ++entries;
    }
  }
  EXPECT_GT(entries, 20);
}

TEST_F(Mnemonics, KeysOfAWindow_HaveOneMeaningEach) {
  Begin();
  OpenStreaming();

  QMap<QString, QString> keys;
  for (const QAction* const action : GetWindow().actions()) {
    const QString key = action->shortcut().toString();
    if (key.isEmpty())
      continue;
    EXPECT_FALSE(keys.contains(key)) << key.toStdString() << ": " << action->text().toStdString() << " and "
                                     << keys[key].toStdString();
    keys[key] = action->text();
  }
  EXPECT_GT(keys.size(), 15);
}

TEST_F(Mnemonics, FirstPage_TakesNoLetterOfTheMenus) {
  Begin();

  ExpectOwnLetters(GetWindow().GetFirstPage());
}

TEST_F(Mnemonics, Panels_TakeNoLetterOfTheMenus) {
  Begin();
  OpenStreaming();
  for (const auto& [panel, name] :
       {std::pair(Panel::Histogram, "histogram"), std::pair(Panel::LineProfile, "lineProfile"),
        std::pair(Panel::Intervals, "intervals"), std::pair(Panel::Recording, "recording")}) {
    SCOPED_TRACE(name);
    GetPage()->GetPanels().Show(panel, true);
    const auto* const dock = GetPage()->findChild<QWidget*>(name);
    ASSERT_NE(dock, nullptr);
    ASSERT_TRUE(Await([=] { return dock->isVisible(); }));

    ExpectOwnLetters(*dock);
  }
}

TEST_F(Mnemonics, RegionBar_TakesNoLetterOfTheMenus) {
  Begin();
  OpenStreaming();
  const auto* const bar = GetPage()->findChild<QWidget*>("regionBar");
  ASSERT_NE(bar, nullptr);
  ASSERT_TRUE(Await([this] { return GetPage()->GetDisplay().GetMapping().has_value(); }));

  ASSERT_TRUE(Choose("region"));
  ASSERT_TRUE(Await([=] { return bar->isVisible(); }));

  ExpectOwnLetters(*bar);
}

TEST_F(Mnemonics, Messages_TakeNoLetterOfTheMenus) {
  Begin();
  OpenStreaming();
  const auto* const bar = GetPage()->findChild<krviewer::MessageBar*>();

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(Await([=] { return bar->GetText().contains("lost"); }));
  ExpectOwnLetters(*bar);

  ASSERT_TRUE(Choose("disconnect"));
  ASSERT_TRUE(Await([=] { return bar->GetText().contains("is disconnected"); }));
  ExpectOwnLetters(*bar);

  ASSERT_TRUE(Choose("connect"));
  ASSERT_TRUE(Await([=] { return bar->GetText().contains("cannot be shown"); }));
  ExpectOwnLetters(*bar);
}
