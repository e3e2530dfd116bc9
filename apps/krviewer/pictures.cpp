#include "pictures.h"

#include "krbase/kratomicfile.h"

#include <QBuffer>
#include <QDir>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

#include <cstddef>

namespace krviewer {

namespace {

// On X11 what is really on the screen; elsewhere no application may read that, and the widget paints itself.
QImage GrabWindow(QWidget& aWidget) {
  if (QGuiApplication::platformName() != QStringLiteral("xcb"))
    return aWidget.grab().toImage();
  const QPoint corner = aWidget.mapToGlobal(QPoint(0, 0));
  return aWidget.screen()->grabWindow(0, corner.x(), corner.y(), aWidget.width(), aWidget.height()).toImage();
}

KrResult FailToWrite(const QString& aPath, const QString& aReason) {
  return {KrResult::Code::SystemError, QStringLiteral("Cannot write %1: %2").arg(aPath, aReason).toStdString()};
}

KrResult SaveBytes(const QByteArray& aBytes, const QString& aPath) {
  KrAtomicFile file;
  KrResult result = file.Open(aPath.toStdString(), KrAtomicFile::Existing::Replaced);
  if (result.IsOK())
    result = file.Write(aBytes.constData(), static_cast<std::size_t>(aBytes.size()));
  return result.IsOK() ? file.Commit() : result;
}

KrResult SaveImage(const QImage& aImage, const QString& aPath) {
  QBuffer picture;
  if (!picture.open(QIODevice::WriteOnly) || !aImage.save(&picture, "PNG"))
    return FailToWrite(aPath, QStringLiteral("there is no picture of it"));
  return SaveBytes(picture.data(), aPath);
}

} // namespace

bool IsWithoutDisplay() {
  return QGuiApplication::platformName() == QStringLiteral("offscreen");
}

KrResult WriteBrowserPicture(KrGenBrowserWnd& aWindow, const QString& aFolder) {
  // What was read is painted first; where values change all the time that never ends, and what is there does.
  const KrResult handled = aWindow.DoEvents();
  const bool isOpen = handled.IsOK() || handled == KrResult::Code::TimeLimitExceeded;
  QWidget* const widget = aWindow.GetWidget();
  if (!isOpen || !widget)
    return {KrResult::Code::WrongState, "There is no feature browser to take a picture of: its window is closed"};
  if (!QDir().mkpath(aFolder))
    return FailToWrite(aFolder, QStringLiteral("the folder cannot be made"));
  return SaveImage(widget->grab().toImage(), QDir(aFolder).filePath(QStringLiteral("browser.png")));
}

KrResult WriteWindowPicture(QWidget& aWindow, const QString& aFolder) {
  if (!QDir().mkpath(aFolder))
    return FailToWrite(aFolder, QStringLiteral("the folder cannot be made"));
  return SaveImage(GrabWindow(aWindow), QDir(aFolder).filePath(QStringLiteral("window.png")));
}

KrResult WritePictures(KrDisplayWnd& aWindow, const QString& aFolder) {
  QWidget* widget = aWindow.GetWidget();
  const IKrImage* image = aWindow.GetInternalBuffer().GetImage();
  if (!widget || !image || image->GetImageSize() == 0 || image->GetPixelType() != KrPixel::BGRa8)
    return {KrResult::Code::WrongState, "There is no picture to write: the window is closed or shows no image"};
  if (!QDir().mkpath(aFolder))
    return FailToWrite(aFolder, QStringLiteral("the folder cannot be made"));

  const QDir folder(aFolder);
  const QImage frame(image->GetDataPointer(), static_cast<int>(image->GetWidth()), static_cast<int>(image->GetHeight()),
                     static_cast<qsizetype>(image->GetWidth()) * 4, QImage::Format_RGB32);
  if (KrResult result = SaveImage(GrabWindow(*widget), folder.filePath(QStringLiteral("display.png"))); !result.IsOK())
    return result;
  if (KrResult result = SaveImage(frame, folder.filePath(QStringLiteral("frame.png"))); !result.IsOK())
    return result;
  return SaveBytes(aWindow.GetTextOverlay().CStr(), folder.filePath(QStringLiteral("display.txt")));
}

} // namespace krviewer
