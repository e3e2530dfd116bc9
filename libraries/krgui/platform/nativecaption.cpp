#include "platform/nativecaption.h"

#include "platform/x11connection.h"

#include <QCoreApplication>
#include <QString>
#include <QWidget>
#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>

namespace krgui {

namespace {

bool IsLatin1(const QString& aText) {
  return std::all_of(aText.cbegin(), aText.cend(), [](QChar aCharacter) { return aCharacter.unicode() <= 0xFF; });
}

} // namespace

std::unique_ptr<NativeCaption> NativeCaption::Make(const QWidget& aDialog) {
  return std::unique_ptr<NativeCaption>(GetX11Connection() == nullptr ? nullptr : new NativeCaption(aDialog));
}

NativeCaption::NativeCaption(const QWidget& aDialog)
    : mDialog(aDialog), mNetName(FindX11Atom("_NET_WM_NAME")), mUTF8(FindX11Atom("UTF8_STRING")) {
  QCoreApplication::instance()->installNativeEventFilter(this);
}

NativeCaption::~NativeCaption() = default;

void NativeCaption::Write() const {
  if (GetID() != 0) {
    WriteProperty(MakeProperty(mNetName));
    WriteProperty(MakeProperty(XCB_ATOM_WM_NAME));
    xcb_flush(GetX11Connection());
  }
}

bool NativeCaption::nativeEventFilter(const QByteArray& aType, void* aMessage, qintptr*) {
  constexpr unsigned kSentFlag = 0x80;
  if (aType != "xcb_generic_event_t") {
    return false;
  }
  const auto& event = *static_cast<const xcb_property_notify_event_t*>(aMessage);
  if ((event.response_type & ~kSentFlag) == XCB_PROPERTY_NOTIFY && event.window == GetID() &&
      (event.atom == mNetName || event.atom == XCB_ATOM_WM_NAME)) {
    const Property property = MakeProperty(event.atom);
    if (!IsWritten(property)) {
      WriteProperty(property);
    }
  }
  return false;
}

/// Asked anew each time: the toolkit makes another native window when a widget's flags or parent change.
std::uint32_t NativeCaption::GetID() const {
  const QWindow* window = mDialog.windowHandle();
  return window == nullptr || window->handle() == nullptr ? 0 : static_cast<std::uint32_t>(window->winId());
}

NativeCaption::Property NativeCaption::MakeProperty(std::uint32_t aName) const {
  const QString title = mDialog.windowHandle()->title();
  if (aName == XCB_ATOM_WM_NAME && IsLatin1(title)) {
    // What this property is made of for window managers that know no other encoding.
    return {aName, XCB_ATOM_STRING, title.toLatin1()};
  }
  return {aName, mUTF8, title.toUtf8()};
}

bool NativeCaption::IsWritten(const Property& aProperty) const {
  xcb_connection_t* connection = GetX11Connection();
  // In units of four bytes, one more than there should be.
  const auto length = static_cast<std::uint32_t>(aProperty.value.size() / 4 + 1);
  const auto cookie = xcb_get_property(connection, 0, GetID(), aProperty.name, XCB_GET_PROPERTY_TYPE_ANY, 0, length);
  xcb_generic_error_t* error = nullptr;
  const auto reply = KeepReply(xcb_get_property_reply(connection, cookie, &error));
  const auto ownedError = KeepReply(error);
  if (!reply) {
    // The window is gone: there is nothing to write.
    return true;
  }
  const QByteArray value(static_cast<const char*>(xcb_get_property_value(reply.get())),
                         xcb_get_property_value_length(reply.get()));
  return reply->type == aProperty.type && reply->bytes_after == 0 && value == aProperty.value;
}

void NativeCaption::WriteProperty(const Property& aProperty) const {
  constexpr std::uint8_t kBits = 8;
  xcb_change_property(GetX11Connection(), XCB_PROP_MODE_REPLACE, GetID(), aProperty.name, aProperty.type, kBits,
                      static_cast<std::uint32_t>(aProperty.value.size()), aProperty.value.constData());
}

} // namespace krgui
