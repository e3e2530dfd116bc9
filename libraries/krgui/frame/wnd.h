#pragma once
// The base of all implementation windows: opening from a template as child, modal or modeless window, closing,
// messages, remembered position and title. A derived window supplies its template numbers, its limits and its own
// handling.

#include "krgui/krwnd.h"
#include "logic/frame/messagequeue.h"

#include <QSize>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

class QWidget;

namespace krgui {

class Wnd {
public:
  enum class Mode : std::int32_t { None = -1, Child = 0, Modal = 1, Modeless = 2 };

  /// The template of the modal path; the other two are asked of the derived class.
  explicit Wnd(int aConstructionTemplateID);
  virtual ~Wnd();
  Wnd(const Wnd&) = delete;
  Wnd& operator=(const Wnd&) = delete;

  virtual int GetPopupTemplateID() const = 0;
  virtual int GetChildTemplateID() const = 0;
  virtual int GetMinWidth() const = 0;
  virtual int GetMaxWidth() const = 0;
  virtual int GetMinHeight() const = 0;
  virtual int GetMaxHeight() const = 0;

  KrResult Create(HWND aParent, UINT aID);
  KrResult CreateIn(QWidget* aParent);
  KrResult ShowModal(HWND aParent);
  KrResult ShowModeless(HWND aParent);
  KrResult Close();
  KrResult DoEvents();
  /// What DoEvents logs and returns where there is no window.
  static KrResult ReportNotOpen();
  /// Closes what is open while the derived class is still whole. Every most derived class calls it in its destructor;
  /// the facade calls it before it deletes the window.
  void Dispose();
  HWND GetHandle() const;
  QWidget* GetWidget() const;
  void GetPosition(int& aX, int& aY, int& aWidth, int& aHeight);
  void SetPosition(int aX, int aY, int aWidth, int aHeight);
  KrString GetTitle() const;
  void SetTitle(const KrString& aTitle);

  bool IsOpen() const;
  Mode GetShowMode() const;
  /// The road to the user interface: shared with workers, which keep it instead of the window.
  const std::shared_ptr<MessageQueue>& GetQueue() const;

protected:
  /// The controls exist, nothing is on the screen yet. Overrides call the base first. True gives the focus to the
  /// default control.
  virtual bool OnInitDialog();
  /// The client area has a new size, in device-independent pixels; also once after OnInitDialog.
  virtual void OnSize(const QSize& aSize);
  /// A message of the queue; true when it was handled.
  virtual bool OnMessage(const Message& aMessage);
  /// The Enter key in a window whose focused control does not take it. By default ends the dialog with OK.
  virtual void OnOK();
  /// The Escape key. By default ends a modal dialog with Cancelled and closes a modeless one; a child stays.
  virtual void OnCancel();
  /// The caption's close box, or whatever else closes the widget. By default as OnCancel.
  virtual void OnClose();
  /// The window is going away, by whatever way; its controls still exist. Workers are joined and drawing surfaces
  /// released here. Overrides call the base last.
  virtual void OnDestroy();

  /// Calls the handler of a control's signal. Whatever of this window ends meanwhile stays until it has returned, as
  /// its controls are on the stack; the handler may delete the window.
  void CallHandler(const std::function<void()>& aHandler);
  /// A control of the open window by its template id; null when the template lacks it or the window is not open.
  QWidget* GetControl(int aID) const;
  /// Ends the opening: a modal one with this result (1 OK, 2 Cancel), any other is closed.
  void EndDialog(int aResult);
  /// Destroys the window of an opening that is not modal; ends a modal one with Cancel.
  void DestroyWindow();

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};

} // namespace krgui
