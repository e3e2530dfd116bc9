// The main function of tests that make windows: an application object, the font that the tests measure in, and no
// warning of the toolkit goes by unnoticed.

#include <QApplication>
#include <QFontDatabase>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

/// How what the platform without a screen says of itself begins; other platforms support all of it.
const QString kOffscreenWarning = QStringLiteral("This plugin does not support ");

void FailOnWarning(QtMsgType aType, const QMessageLogContext&, const QString& aText) {
  if (aType != QtDebugMsg && aType != QtInfoMsg && !aText.startsWith(kOffscreenWarning)) {
    ADD_FAILURE() << "The toolkit warned: " << aText.toStdString();
  }
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleMock(&aArgumentCount, aArguments);
  const QApplication application(aArgumentCount, aArguments);
  const QString family = QStringLiteral("DejaVu Sans");
  if (!QFontDatabase::hasFamily(family)) {
    qFatal("These tests measure texts in the font DejaVu Sans; install the package fonts-dejavu-core.");
  }
  QApplication::setFont(QFont(family, 9));
  // Tests close their last window and go on.
  QApplication::setQuitOnLastWindowClosed(false);
  qInstallMessageHandler(FailOnWarning);
  return RUN_ALL_TESTS();
}
