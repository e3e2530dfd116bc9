#pragma once
// The search field of the feature browser, for applications that build their own: finds features in a property grid by
// their names. Where it stands, and which buttons move on, is left to whoever places it.

#include "krbase/krstring.h"

#include <QWidget>

#include <memory>

class PropertiesCtrl;

namespace krgui {
class GenBrowserWnd;
}

/// The field. Typing finds, selects and highlights the first match, Enter goes on to the next.
///
/// Thread: the user-interface thread alone.
/// Ownership: a widget, which belongs to its parent; borrows the grid, which may end before it.
///
///     auto* searchBar = new GenBrowserSearchBar(nullptr, grid);
///     layout->addWidget(searchBar);
class KR_EXPORT GenBrowserSearchBar : public QWidget {
public:
  /// The longest text that is searched for, with its end: 255 characters of UTF-16.
  static constexpr int BUFFER_SIZE = 256;

  /// aBrowser is the library's own browser, null in an application's layout: names are compared by feature name then.
  GenBrowserSearchBar(krgui::GenBrowserWnd* aBrowser, PropertiesCtrl* aProperties, QWidget* aParent = nullptr);
  ~GenBrowserSearchBar() override;

  /// Works on another grid from now on, or on none; call Search(true) to search it.
  void SetProperties(PropertiesCtrl* aProperties);
  /// Searches for the text. Unless it was edited since the last search or aForces is true, it goes on to the next match
  /// instead.
  void Search(bool aForces);
  /// The next match, after the last the first.
  void MoveToNextOccurence();
  /// The previous match, before the first the last.
  void MoveToPreviousOccurence();
  /// Repaints the grid at once.
  void Update();

  /// The text in the field.
  KrString GetText() const;
  /// Sets the text, which is searched for at once.
  void SetText(const KrString& aText);
  /// What the last search came to: "Result 2 of 7", "No result found", or nothing for an empty text.
  KrString GetResultText() const;

private:
  class Body;
  std::unique_ptr<Body> mBody;
};
