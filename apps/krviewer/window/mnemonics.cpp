#include "window/mnemonics.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QMenuBar>
#include <QTabBar>

namespace krviewer {

namespace {

QStringList GetTexts(const QWidget& aWidget) {
  QStringList texts;
  if (const auto* const button = qobject_cast<const QAbstractButton*>(&aWidget)) {
    texts += button->text();
  } else if (const auto* const group = qobject_cast<const QGroupBox*>(&aWidget)) {
    texts += group->title();
  } else if (const auto* const label = qobject_cast<const QLabel*>(&aWidget)) {
    if (label->buddy())
      texts += label->text();
  } else if (const auto* const menus = qobject_cast<const QMenuBar*>(&aWidget)) {
    for (const QAction* const action : menus->actions())
      texts += action->text();
  } else if (const auto* const tabs = qobject_cast<const QTabBar*>(&aWidget)) {
    for (int index = 0; index < tabs->count(); ++index)
      texts += tabs->tabText(index);
  }
  return texts;
}

QString Unmark(const QString& aText) {
  QString text;
  for (qsizetype index = 0; index < aText.size(); ++index) {
    if (aText[index] == QLatin1Char('&') && ++index == aText.size())
      break;
    text += aText[index];
  }
  return text;
}

QString Mark(const QString& aText, qsizetype aIndex) {
  QString text = aText;
  text.replace(QLatin1Char('&'), QStringLiteral("&&"));
  // Every & before the letter is two now.
  return text.insert(aIndex + aText.first(aIndex).count(QLatin1Char('&')), QLatin1Char('&'));
}

} // namespace

QChar GetMnemonic(const QString& aText) {
  for (qsizetype index = 0; index + 1 < aText.size(); ++index) {
    if (aText[index] != QLatin1Char('&'))
      continue;
    ++index;
    if (aText[index] != QLatin1Char('&'))
      return aText[index].toUpper();
  }
  return {};
}

QString MarkFreeLetter(const QString& aText, const QSet<QChar>& aTaken) {
  const QChar wanted = GetMnemonic(aText);
  if (!wanted.isNull() && !aTaken.contains(wanted))
    return aText;
  const QString text = Unmark(aText);
  for (const bool isWithinWords : {false, true})
    for (qsizetype index = 0; index < text.size(); ++index) {
      const bool isWithin = index > 0 && text[index - 1].isLetter();
      if (isWithin == isWithinWords && text[index].isLetter() && !aTaken.contains(text[index].toUpper()))
        return Mark(text, index);
    }
  return QString(text).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QSet<QChar> FindMnemonics(const QWidget& aWindow, const QWidget* aExcept) {
  QSet<QChar> letters;
  for (const QWidget* const widget : aWindow.findChildren<QWidget*>()) {
    const bool isExcepted = aExcept && (widget == aExcept || aExcept->isAncestorOf(widget));
    if (isExcepted || !widget->isVisibleTo(&aWindow) || widget->window() != &aWindow)
      continue;
    for (const QString& text : GetTexts(*widget))
      if (const QChar letter = GetMnemonic(text); !letter.isNull())
        letters.insert(letter);
  }
  return letters;
}

} // namespace krviewer
