#pragma once
// The controls of one opening of the feature browser: makes those that the template only has places for, names them,
// lays all of them out, shows and hides the search row and lets the user move the boundary under the grid. What they do
// is left to the window.

#include "logic/browser/bandlayout.h"
#include "logic/browser/browserlayout.h"
#include "logic/frame/messagequeue.h"

#include <QFont>
#include <QObject>
#include <QSize>

#include <array>
#include <functional>
#include <memory>
#include <optional>

class GenBrowserSearchBar;
class PropertiesCtrl;
class QComboBox;
class QLabel;
class QPushButton;
class QWidget;

namespace krgui {

class BrowserSplitter;
class DescriptionCtrl;
class ErrorButton;
class GenBrowserWnd;
class PropertiesGrid;
class ToolBarButton;

/// Thread: user interface. Ownership: the widgets belong to the dialog, which must outlive this object.
class BrowserControls {
public:
  using Lookup = std::function<QWidget*(int aID)>;

  /// aDescriptionHeight, what the user wants of it, is kept by the window and outlives this object.
  BrowserControls(QWidget& aDialog, const Lookup& aLookup, GenBrowserWnd& aBrowser,
                  std::shared_ptr<MessageQueue> aQueue, int& aDescriptionHeight);
  ~BrowserControls();
  BrowserControls(const BrowserControls&) = delete;
  BrowserControls& operator=(const BrowserControls&) = delete;

  ToolBarButton& GetOptionsButton() const { return *mTools[0]; }
  ToolBarButton& GetExpandButton() const { return *mTools[1]; }
  ToolBarButton& GetCollapseButton() const { return *mTools[2]; }
  ToolBarButton& GetRefreshButton() const { return *mTools[3]; }
  QComboBox& GetVisibilityList() const { return *mVisibilityList; }
  ErrorButton& GetErrorButton() const { return *mErrorButton; }
  GenBrowserSearchBar& GetSearchBar() const { return *mSearchBar; }
  QPushButton& GetPreviousButton() const { return *mPreviousButton; }
  QPushButton& GetNextButton() const { return *mNextButton; }
  QPushButton& GetCloseSearchButton() const { return *mCloseSearchButton; }
  QLabel& GetResultLabel() const { return *mResultLabel; }
  /// What of the search row takes the focus.
  std::vector<QWidget*> GetSearchControls() const;
  PropertiesGrid& GetGrid() const;
  DescriptionCtrl& GetDescription() const { return *mDescription; }

  void LayOut(const QSize& aSize);
  bool IsSearchRowShown() const { return mIsSearchRowShown; }
  /// Shown, its field gets the focus; hidden, it is emptied, and nothing is found or highlighted any more.
  void ShowSearchRow(bool aIsShown);
  /// From the grid to the description and back, from anywhere else to the grid.
  void FocusNextPane();
  /// Gives the boundary under the grid to the keyboard.
  void FocusSplitter();

private:
  void MakeTools(const Lookup& aLookup);
  void MakeSearchRow(const Lookup& aLookup, GenBrowserWnd& aBrowser);
  void OrderTabs();
  const QFont& GetSymbolFont();
  std::vector<QWidget*> GetSearchRow() const;
  BrowserMetrics GetMetrics() const;
  void LayOutTools(const GridRect& aBand);
  void LayOutSearchRow(const GridRect& aBand);
  void MoveBoundary(int aY);

  QWidget& mDialog;
  int& mDescriptionHeight;
  QSize mSize;
  BrowserRows mRows = {};
  bool mIsSearchRowShown = false;
  std::optional<QFont> mSymbolFont;

  std::array<ToolBarButton*, 4> mTools = {};
  std::array<QWidget*, 4> mToolPlaces = {};
  QLabel* mVisibilityLabel;
  QComboBox* mVisibilityList;
  QWidget* mErrorPlace;
  ErrorButton* mErrorButton;
  QLabel* mSearchLabel;
  QWidget* mSearchPlace;
  GenBrowserSearchBar* mSearchBar = nullptr;
  QPushButton* mPreviousButton;
  QPushButton* mNextButton;
  QPushButton* mCloseSearchButton;
  QLabel* mResultLabel;
  QWidget* mGridPlace;
  PropertiesCtrl* mProperties;
  QWidget* mDescriptionPlace;
  DescriptionCtrl* mDescription;
  BrowserSplitter* mSplitter;
  const std::unique_ptr<QObject> mHoverWatch; ///< Redraws tool buttons.
};

} // namespace krgui
