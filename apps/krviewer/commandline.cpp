#include "commandline.h"

#include "descriptionfile.h"

#include <QCommandLineParser>
#include <QList>

#include <limits>

namespace krviewer {

namespace {

CommandLineStatus Fail(const QString& aReason, QString& aText) {
  aText = aReason + QStringLiteral("\nTry: krviewer --help");
  return CommandLineStatus::Error;
}

/// Longer runs are none that anybody waits for, and the timer's milliseconds have to fit.
constexpr std::uint32_t kMostSeconds = 1'000'000;

// What an argument without a name means. False when there is no room for it.
bool TakeArgument(const QString& aArgument, CommandLine& aCommandLine) {
  if (!aCommandLine.descriptionFile.isEmpty())
    return false;
  if (!krapps::IsDescriptionFile(aArgument.toLocal8Bit().toStdString())) {
    aCommandLine.devices += aArgument;
    return true;
  }
  aCommandLine.descriptionFile = aArgument;
  return aCommandLine.devices.isEmpty() && !aCommandLine.simulate && aCommandLine.frames == 0 &&
         aCommandLine.seconds == 0;
}

QList<QCommandLineOption> MakeOptions() {
  return {
      {"device",
       "Show this camera: an ID, a MAC or IP address, a serial number or a user-defined name. May be given several "
       "times: each camera gets a tab. Without it the window begins with what can be shown; headless the first camera "
       "is shown.",
       "DEVICE"},
      {"simulate", "Offer the built-in simulated cameras beside the real ones."},
      {"lab", "Offer the simulated lab that this file describes beside the real cameras.", "FILE"},
      {"frames",
       "End after this number of frames of each camera; one that is lost before has ended, too, instead of being "
       "waited for.",
       "N"},
      {"seconds", "End this number of seconds after the cameras have been opened.", "N"},
      {"screenshot",
       "At the end write pictures of the whole window, of the display, of the feature browser and of the last frame, "
       "and the overlay's text, into this folder; those of a second camera into its folder camera-2, and so on.",
       "DIR"},
      {"headless", "Use no display, even where there is one; with --simulate the first simulated camera is shown."},
      {"style", "Draw windows in this style of Qt, Fusion for example, instead of the desktop's.", "STYLE"},
      {{"h", "help"}, "Print this text."},
      {{"v", "version"}, "Print the version."}};
}

const char* const kDescription =
    "Shows machine-vision cameras live, each in a tab, with its features beside the picture.\n"
    "Without a display it ends after 100 frames and writes its pictures into the folder pictures.";

const char* const kMoreHelp = R"(
Examples:
    krviewer                              begin with the cameras that can be found
    krviewer 192.168.1.20                 show the camera at this address
    krviewer --simulate sim-mono sim-colour  two simulated cameras, a tab for each
    krviewer camera.xml                   the features of a description, without a camera
    krviewer --headless --seconds 5 --screenshot shots 192.168.1.20
                                          what the camera sends for five seconds, as pictures

Ctrl-C ends it as closing its windows does; a second one at once, without figures,
pictures and settings. The exit code is 0, 1 when it failed, 2 when it was not
understood, or 128 and the number of the signal that ended a run before the end of its
own that --frames or --seconds gives it.

Keys:
  Ctrl+O       find a camera            Ctrl+W         close the camera, or a window
  F5           start                    Shift+F5       stop
  F9           a single frame           F7             software trigger
  Ctrl+1       actual size              Ctrl+0         fit to the window
  Ctrl++       zoom in                  Ctrl+-         zoom out
  Ctrl+S       save the frame shown     Ctrl+R         record, and stop it
  F11          full screen, Esc back    Ctrl+Shift+R   region of interest
  Alt+1 to 7   panels: camera features, stream and connection parameters,
               histogram, line profile, frame intervals, recording
  Ctrl+T       serial terminal          Ctrl+B         serial bridges
  Ctrl+K       cameras behind the serial ports of a frame grabber
  Ctrl+PgDn    next camera              Ctrl+PgUp      previous camera
  Ctrl+Q       quit                     F1             all keys
)";

// A number of 1 or more behind an option. False, with a text, for any other; nothing where the option is missing.
template <typename Number>
bool TakeNumber(const QCommandLineParser& aParser, const char* aOption, Number aMost, Number& aNumber, QString& aText) {
  if (!aParser.isSet(aOption))
    return true;
  bool isNumber = false;
  const qulonglong number = aParser.value(aOption).toULongLong(&isNumber);
  if (!isNumber || number == 0 || number > aMost) {
    Fail(QStringLiteral("--%1 wants a number from 1 to %2, not \"%3\".")
             .arg(QLatin1String(aOption))
             .arg(aMost)
             .arg(aParser.value(aOption)),
         aText);
    return false;
  }
  aNumber = static_cast<Number>(number);
  return true;
}

// What an option that was given without a value should have had; null where all have theirs.
const char* FindMissing(const QCommandLineParser& aParser) {
  if (aParser.values("device").contains(QString()))
    return "--device wants an ID, a MAC or IP address, a serial number or a user-defined name.";
  if (aParser.isSet("lab") && aParser.value("lab").isEmpty())
    return "--lab wants a lab file.";
  if (aParser.isSet("screenshot") && aParser.value("screenshot").isEmpty())
    return "--screenshot wants a folder.";
  if (aParser.isSet("style") && aParser.value("style").isEmpty())
    return "--style wants a style of Qt.";
  return nullptr;
}

} // namespace

CommandLineStatus ParseCommandLine(const QStringList& aArguments, CommandLine& aCommandLine, QString& aText) {
  QCommandLineParser parser;
  // As other programs of the toolkit have it: -style.
  parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  parser.setApplicationDescription(QString::fromUtf8(kDescription));
  parser.addPositionalArgument(
      "FILE.xml",
      "Show this camera description without a camera, over registers that are all zero: a name "
      "that ends in .xml or .zip, or that of a file that is there. Any other name is a camera's, "
      "as behind --device.",
      "[DEVICE...|FILE.xml]");
  parser.addOptions(MakeOptions());

  if (!parser.parse(QStringList{QStringLiteral("krviewer")} + aArguments))
    return Fail(parser.errorText(), aText);
  if (parser.isSet("help")) {
    aText = parser.helpText().replace(QStringLiteral("<executable_name>"), QStringLiteral("krviewer")) +
            QString::fromUtf8(kMoreHelp);
    return CommandLineStatus::Help;
  }
  if (parser.isSet("version"))
    return CommandLineStatus::Version;
  if (const char* const missing = FindMissing(parser))
    return Fail(QString::fromUtf8(missing), aText);
  aCommandLine.devices = parser.values("device");
  aCommandLine.simulate = parser.isSet("simulate") || parser.isSet("lab");
  aCommandLine.labFile = parser.value("lab");
  aCommandLine.headless = parser.isSet("headless");
  aCommandLine.style = parser.value("style");
  aCommandLine.screenshotFolder = parser.value("screenshot");
  if (!TakeNumber(parser, "frames", std::numeric_limits<std::uint64_t>::max(), aCommandLine.frames, aText) ||
      !TakeNumber(parser, "seconds", kMostSeconds, aCommandLine.seconds, aText))
    return CommandLineStatus::Error;
  for (const QString& argument : parser.positionalArguments())
    if (!TakeArgument(argument, aCommandLine))
      return Fail(QStringLiteral("\"%1\" does not go with the rest: cameras are shown, or one file without a camera.")
                      .arg(argument),
                  aText);
  return CommandLineStatus::Run;
}

} // namespace krviewer
