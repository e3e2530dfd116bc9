#include "commandline.h"

#include "descriptionfile.h"

#include <QCommandLineParser>

namespace krviewer {

namespace {

CommandLineStatus Fail(const QString& aReason, QString& aText) {
  aText = aReason + QStringLiteral("\nTry: krviewer --help");
  return CommandLineStatus::Error;
}

// What the one argument without a name means. False when there is no room for it.
bool TakeArgument(const QString& aArgument, CommandLine& aCommandLine) {
  const bool isFile = krapps::IsDescriptionFile(aArgument.toLocal8Bit().toStdString());
  const bool hasCamera = !aCommandLine.device.isEmpty();
  const bool hasCameraOptions = hasCamera || aCommandLine.simulate || aCommandLine.frames != 0;
  if (isFile ? hasCameraOptions : hasCamera)
    return false;
  (isFile ? aCommandLine.descriptionFile : aCommandLine.device) = aArgument;
  return true;
}

} // namespace

CommandLineStatus ParseCommandLine(const QStringList& aArguments, CommandLine& aCommandLine, QString& aText) {
  const QCommandLineOption device(
      "device",
      "Show this camera: an ID, a MAC or IP address, a serial number or a user-defined name. "
      "Without it a list to pick from comes first; headless the first camera is shown.",
      "DEVICE");
  const QCommandLineOption simulate("simulate", "Offer the built-in simulated cameras beside the real ones.");
  const QCommandLineOption lab("lab", "Offer the simulated lab that this file describes beside the real cameras.",
                               "FILE");
  const QCommandLineOption frames(
      "frames",
      "End after this number of frames; a camera that is lost before ends it too, instead of being waited for.", "N");
  const QCommandLineOption screenshot(
      "screenshot",
      "At the end write pictures of the display, of the feature browser and of the last frame, and the overlay's text, "
      "into this folder.",
      "DIR");
  const QCommandLineOption headless(
      "headless", "Use no display, even where there is one; with --simulate the first simulated camera is shown.");
  const QCommandLineOption help({"h", "help"}, "Print this text.");
  const QCommandLineOption version({"v", "version"}, "Print the version.");
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "Shows a machine-vision camera live, with its features beside the picture; Ctrl+T opens a terminal on its\n"
      "serial ports, Ctrl+B the bridges between them and COM ports, Ctrl+K the cameras behind those of a frame "
      "grabber.\n"
      "Escape or Enter in the picture, or the close box, end it.\n"
      "Without a display it ends after 100 frames and writes its pictures into the folder pictures.");
  parser.addPositionalArgument(
      "FILE.xml",
      "Show this camera description without a camera, over registers that are all zero: a name "
      "that ends in .xml or .zip, or that of a file that is there. Any other name is a camera's, "
      "as behind --device.",
      "[DEVICE|FILE.xml]");
  parser.addOptions({device, simulate, lab, frames, screenshot, headless, help, version});

  if (!parser.parse(QStringList{QStringLiteral("krviewer")} + aArguments))
    return Fail(parser.errorText(), aText);
  if (parser.isSet(help)) {
    aText = parser.helpText().replace(QStringLiteral("<executable_name>"), QStringLiteral("krviewer"));
    return CommandLineStatus::Help;
  }
  if (parser.isSet(version))
    return CommandLineStatus::Version;
  aCommandLine.device = parser.value(device);
  aCommandLine.simulate = parser.isSet(simulate) || parser.isSet(lab);
  aCommandLine.labFile = parser.value(lab);
  aCommandLine.headless = parser.isSet(headless);
  aCommandLine.screenshotFolder = parser.value(screenshot);
  if (parser.isSet(lab) && aCommandLine.labFile.isEmpty())
    return Fail(QStringLiteral("--lab wants a lab file."), aText);
  if (parser.isSet(screenshot) && aCommandLine.screenshotFolder.isEmpty())
    return Fail(QStringLiteral("--screenshot wants a folder."), aText);
  if (parser.isSet(device) && aCommandLine.device.isEmpty())
    return Fail(QStringLiteral("--device wants an ID, a MAC or IP address, a serial number or a user-defined name."),
                aText);
  if (parser.isSet(frames)) {
    bool isNumber = false;
    aCommandLine.frames = parser.value(frames).toULongLong(&isNumber);
    if (!isNumber || aCommandLine.frames == 0)
      return Fail(QStringLiteral("--frames wants a number of 1 or more, not \"%1\".").arg(parser.value(frames)), aText);
  }
  const QStringList arguments = parser.positionalArguments();
  if (arguments.size() > 1)
    return Fail(QStringLiteral("Unexpected argument \"%1\".").arg(arguments[1]), aText);
  if (!arguments.isEmpty() && !TakeArgument(arguments.constFirst(), aCommandLine))
    return Fail(QStringLiteral("\"%1\" does not go with the options: one camera is shown, or a file without a camera.")
                    .arg(arguments.constFirst()),
                aText);
  return CommandLineStatus::Run;
}

} // namespace krviewer
