#pragma once
// Keeps a window's caption literal on X11. The toolkit writes the program's name where a title is empty and appends the
// application's display name to any other; the window manager shall read the title and nothing else. Other platforms
// show what the toolkit makes of it.

#include <QAbstractNativeEventFilter>
#include <QByteArray>

#include <cstdint>
#include <memory>

class QWidget;

namespace krgui {

/// Lives as long as the dialog that it belongs to.
///
/// Thread: user interface.
class NativeCaption : public QAbstractNativeEventFilter {
public:
  /// Null where captions are not X11's. The dialog's native window exists.
  static std::unique_ptr<NativeCaption> Make(const QWidget& aDialog);
  ~NativeCaption() override;
  NativeCaption(const NativeCaption&) = delete;
  NativeCaption& operator=(const NativeCaption&) = delete;

  /// Writes the dialog's title into the window's properties. Also done whenever somebody else has written them.
  void Write() const;

  bool nativeEventFilter(const QByteArray& aType, void* aMessage, qintptr* aResult) override;

private:
  struct Property {
    std::uint32_t name;
    std::uint32_t type;
    QByteArray value;
  };

  explicit NativeCaption(const QWidget& aDialog);
  std::uint32_t GetID() const;
  Property MakeProperty(std::uint32_t aName) const;
  bool IsWritten(const Property& aProperty) const;
  void WriteProperty(const Property& aProperty) const;

  const QWidget& mDialog;
  const std::uint32_t mNetName;
  const std::uint32_t mUTF8;
};

} // namespace krgui
