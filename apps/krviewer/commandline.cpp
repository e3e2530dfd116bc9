#include "commandline.h"

#include <QCommandLineParser>

namespace krviewer {

namespace {

CommandLineStatus Fail(const QString& aReason, QString& aText) {
  aText = aReason + QStringLiteral("\nTry: krviewer --help");
  return CommandLineStatus::Error;
}

} // namespace

CommandLineStatus ParseCommandLine(const QStringList& aArguments, CommandLine& aCommandLine, QString& aText) {
  const QCommandLineOption device("device",
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
      "At the end write pictures of the window and of the last frame, and the overlay's text, into this folder.",
      "DIR");
  const QCommandLineOption headless(
      "headless", "Use no display, even where there is one; with --simulate the first simulated camera is shown.");
  const QCommandLineOption help({"h", "help"}, "Print this text.");
  const QCommandLineOption version({"v", "version"}, "Print the version.");
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "Shows a machine-vision camera live. Escape, Enter or the close box end it.\n"
      "Without a display it ends after 100 frames and writes its pictures into the folder pictures.");
  parser.addOptions({device, simulate, lab, frames, screenshot, headless, help, version});

  if (!parser.parse(QStringList{QStringLiteral("krviewer")} + aArguments))
    return Fail(parser.errorText(), aText);
  if (parser.isSet(help)) {
    aText = parser.helpText().replace(QStringLiteral("<executable_name>"), QStringLiteral("krviewer"));
    return CommandLineStatus::Help;
  }
  if (parser.isSet(version))
    return CommandLineStatus::Version;
  if (!parser.positionalArguments().isEmpty())
    return Fail(QStringLiteral("Unexpected argument \"%1\".").arg(parser.positionalArguments().constFirst()), aText);

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
    return Fail(QStringLiteral("--device wants an ID, a MAC or IP address, a serial number or a user-defined name."), aText);
  if (parser.isSet(frames)) {
    bool isNumber = false;
    aCommandLine.frames = parser.value(frames).toULongLong(&isNumber);
    if (!isNumber || aCommandLine.frames == 0)
      return Fail(QStringLiteral("--frames wants a number of 1 or more, not \"%1\".").arg(parser.value(frames)), aText);
  }
  return CommandLineStatus::Run;
}

} // namespace krviewer
