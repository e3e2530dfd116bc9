// What the viewer writes of an independent camera's frames, by mouse and keyboard: a frame, a recording, a region.

#include "fakecamera.h"
#include "screenreader.h"
#include "tifffile.h"
#include "viewersession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSize>

#include <cstdint>
#include <vector>

namespace {

const QString kAddress = "127.0.0.1";
const QString kCamera = "Fake (127.0.0.1)";

QByteArray ReadFile(const QString& aPath) {
  QFile file(aPath);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << aPath.toStdString();
  return file.readAll();
}

int GetColumn(const QString& aHeadings, const QString& aName) {
  const qsizetype column = aHeadings.split(',').indexOf(aName);
  EXPECT_GE(column, 0) << aName.toStdString();
  return static_cast<int>(column);
}

// What a text says behind a key; empty where it says nothing.
QString FindValue(const QByteArray& aText, const QString& aKey) {
  for (const QString& line : QString::fromUtf8(aText).split('\n'))
    if (line.startsWith(aKey + ':') || line.startsWith(aKey + '='))
      return line.mid(aKey.size() + 1).trimmed();
  return {};
}

/// The camera's frames are ramps along their diagonals, which begin with another value in each.
void ExpectRamp(const QByteArray& aPixels, int aWidth, int aHeight) {
  ASSERT_EQ(aPixels.size(), qsizetype{aWidth} * aHeight);
  const int first = static_cast<std::uint8_t>(aPixels[0]);
  for (int y = 0; y < aHeight; ++y)
    for (int x = 0; x < aWidth; ++x)
      ASSERT_EQ(static_cast<std::uint8_t>(aPixels[qsizetype{y} * aWidth + x]), (first + x + y) % 255) << x << "," << y;
}

/// Whether a square of the screen is what begins near the middle of a square picture, so many pixels further on.
bool IsShown(const std::vector<std::uint32_t>& aScreen, int aPart, const QByteArray& aPixels, int aWidth,
             int aFurther) {
  const int first = aWidth / 2 + aFurther;
  for (int y = 0; y < aPart; ++y)
    for (int x = 0; x < aPart; ++x) {
      const auto grey = static_cast<std::uint8_t>(aPixels[qsizetype{aWidth} * (first + y) + first + x]);
      if (aScreen.at(static_cast<std::size_t>(y * aPart + x)) != grey * 0x010101U)
        return false;
    }
  return true;
}

class ViewerFiles : public ViewerSession {
protected:
  ViewerFiles() { mCamera.SetFramePeriod(100'000); }

  void SetUp() override {
    Start({kAddress});
    ASSERT_TRUE(AwaitStreaming(kCamera));
  }

  /// Saves the frame that is shown under a name in the user's home; gives its path.
  QString Save(const QString& aName) {
    const QString path = GetPath(aName);
    User().Press("ctrl+s");
    if (User().AwaitWindow("Save Frame")) {
      User().Press("ctrl+a");
      User().Type(path);
      User().Press("Return");
      User().AwaitNoWindow("Save Frame");
    }
    User().Await(path, [&] { return QFileInfo::exists(path); });
    return path;
  }
  /// Records so many frames into a folder of the user's home.
  void Record(const QString& aName, int aFrames) {
    User().Press("alt+7");
    ASSERT_TRUE(Fill("Folder", GetPath("")));
    ASSERT_TRUE(Fill("Name", aName));
    ASSERT_TRUE(Fill("End after frames", QString::number(aFrames)));
    User().Press("ctrl+r");
    ASSERT_TRUE(User().AwaitText("Ended: the number of frames was reached."));
  }
  /// Waits for the number of a name to be one of these.
  bool AwaitNumber(const QString& aName, double aLeast, double aMost) {
    return User().Await(aName, [&] {
      const auto field = User().GetScreen().Find(
          [&](const AccessibleItem& aItem) { return aItem.role == "spin box" && aItem.name == aName; });
      const std::optional<double> value = field ? User().GetScreen().GetValue(*field) : std::nullopt;
      return value && *value >= aLeast && *value <= aMost;
    });
  }
  /// Has the camera send one more frame, and looks at its size; it stands still then.
  void ExpectFrames(QSize aSize) {
    ASSERT_NO_FATAL_FAILURE(Stop());
    const long long frames = GetFrames();
    ASSERT_TRUE(User().AwaitControl("push button", "Single Frame"));
    User().Press("F9");
    ASSERT_TRUE(User().Await("one more frame", [&] { return GetFrames() > frames; }));
    const QString path = Save("region.raw");
    ASSERT_TRUE(User().Await("the text beside the bytes", [&] { return QFileInfo::exists(path + ".txt"); }));
    const QByteArray text = ReadFile(path + ".txt");
    EXPECT_EQ(FindValue(text, "width").toInt(), aSize.width());
    EXPECT_EQ(FindValue(text, "height").toInt(), aSize.height());
    ExpectRamp(ReadFile(path), aSize.width(), aSize.height());
  }
  /// Waits for a part of a picture to be on the screen in its actual size, in the middle of its place.
  void ExpectOnScreen(const QByteArray& aPixels, int aWidth) {
    constexpr int kPart = 200;
    User().Press("ctrl+1");
    const ScreenReader screen;
    const QPoint middle = GetPicturePlace().center();
    EXPECT_TRUE(User().Await("the picture in its actual size", [&] {
      const std::vector<std::uint32_t> shown = screen.Read(QRect(middle, QSize(kPart, kPart)));
      return IsShown(shown, kPart, aPixels, aWidth, -1) || IsShown(shown, kPart, aPixels, aWidth, 0) ||
             IsShown(shown, kPart, aPixels, aWidth, 1);
    }));
  }
  void Stop() {
    User().Press("shift+F5");
    ASSERT_TRUE(User().AwaitWindow(kCamera + " - stopped"));
  }

  const FakeCamera mCamera;
};

} // namespace

TEST_F(ViewerFiles, FrameSaved_IsTheOneThatTheCameraSentAndTheScreenShows) {
  ASSERT_NO_FATAL_FAILURE(Stop());

  const QString raw = Save("frame.raw");
  const QString tiff = Save("frame.tif");

  ASSERT_TRUE(User().Await("the text beside the bytes", [&] { return QFileInfo::exists(raw + ".txt"); }));
  const QByteArray text = ReadFile(raw + ".txt");
  EXPECT_EQ(FindValue(text, "pixel_format"), "Mono8");
  EXPECT_EQ(FindValue(text, "width"), "512");
  const QByteArray pixels = ReadFile(raw);
  ExpectRamp(pixels, 512, 512);
  const TiffFile file(tiff.toStdString());
  EXPECT_EQ(file.width, 512U);
  EXPECT_EQ(file.bitsPerSample, 8);
  EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(file.bytes.data()), static_cast<qsizetype>(file.bytes.size())),
            pixels);
  ExpectOnScreen(pixels, 512);
}

TEST_F(ViewerFiles, FramesRecorded_AreInTheFolderAsItsIndexHasThem) {
  ASSERT_NO_FATAL_FAILURE(Record("raw", 5));

  const QDir folder(GetPath("raw"));
  const QStringList lines = QString::fromUtf8(ReadFile(folder.filePath("index.csv"))).split('\n', Qt::SkipEmptyParts);
  ASSERT_EQ(lines.size(), 6);
  for (const QString& line : lines.mid(1)) {
    const QStringList cells = line.split(',');
    EXPECT_EQ(cells[GetColumn(lines[0], "width")], "512");
    EXPECT_EQ(cells[GetColumn(lines[0], "pixel_format")], "Mono8");
    const QByteArray pixels = ReadFile(folder.filePath(cells[GetColumn(lines[0], "file")]));
    EXPECT_EQ(cells[GetColumn(lines[0], "bytes")].toLongLong(), pixels.size());
    ExpectRamp(pixels, 512, 512);
  }
  const QByteArray text = ReadFile(folder.filePath("recording.txt"));
  EXPECT_EQ(FindValue(text, "ended_by"), "frame_limit");
  EXPECT_EQ(FindValue(text, "written"), "5");
  EXPECT_EQ(folder.entryList({"frame-*.raw"}).size(), 5);
}

TEST_F(ViewerFiles, RegionDrawnWithTheMouse_IsTheSizeOfTheFrames) {
  User().Press("ctrl+1");
  User().Press("ctrl+shift+r");
  ASSERT_TRUE(User().AwaitControl("push button", "Apply"));
  const QPoint middle = GetPicturePlace().center();

  User().Drag(middle - QPoint(60, 40), middle + QPoint(80, 50));
  EXPECT_TRUE(AwaitNumber("Width", 132, 148));
  EXPECT_TRUE(AwaitNumber("Height", 82, 98));
  // Large steps to the right and up, which change no size; then a smaller one.
  User().Press("ctrl+Right");
  User().Press("shift+Left");
  EXPECT_TRUE(AwaitNumber("Width", 120, 147));
  User().Press("Return");

  ASSERT_TRUE(User().AwaitNoText("Draw on the picture."));
  const QSize size(ReadFeature(kAddress, "Width").toInt(), ReadFeature(kAddress, "Height").toInt());
  EXPECT_GE(size.width(), 120);
  EXPECT_LE(size.width(), 147);
  EXPECT_GE(size.height(), 82);
  EXPECT_LE(size.height(), 98);
  ExpectFrames(size);
}

TEST_F(ViewerFiles, RegionTyped_IsTheSizeOfTheFramesUntilTheFullFrameIsWanted) {
  User().Press("ctrl+shift+r");
  ASSERT_TRUE(User().AwaitControl("push button", "Apply"));
  for (const auto& [key, number] : {std::pair("alt+w", "256"), std::pair("alt+g", "128")}) {
    User().Press(key);
    ASSERT_TRUE(User().Await("the field of " + QString(key), [&] { return User().GetFocused().role == "spin box"; }));
    User().Press("ctrl+a");
    User().Type(number);
    User().Press("Tab");
  }
  User().Press("alt+p");

  ASSERT_TRUE(User().AwaitNoText("Draw on the picture."));
  EXPECT_EQ(ReadFeature(kAddress, "Width"), "256");
  EXPECT_EQ(ReadFeature(kAddress, "Height"), "128");
  ExpectFrames({256, 128});

  ASSERT_TRUE(User().AwaitControl("push button", "Single Frame"));
  ASSERT_TRUE(User().Choose("c", "Full Frame", "u"));
  ASSERT_TRUE(User().Await("all of the sensor", [] { return ReadFeature(kAddress, "Width") == "2048"; }));
}
