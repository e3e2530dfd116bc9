#include "window/viewersettings.h"

#include "filesizelimit.h"
#include "temporaryfolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>

using krviewer::HostSettings;
using krviewer::RecentCamera;
using krviewer::RecentCameras;
using krviewer::ViewerSettings;

namespace {

class ViewerSettingsTest : public testing::Test {
protected:
  void Write(const QByteArray& aText) const {
    QFile file(mFile);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(aText), aText.size());
  }
  QByteArray Read() const {
    QFile file(mFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  static RecentCameras MakeCameras() {
    RecentCameras cameras;
    cameras.Add({"02:4b:52:00:77:10", "Camera; with \"all\" kinds = of [letters] 1 µm"});
    cameras.Add({"4B5200000101", "Another, (192.168.1.2)"});
    return cameras;
  }

  const TemporaryFolder mFolder;
  const QString mFile = QString::fromStdString(mFolder.GetFile("settings/krviewer.ini"));
};

const QByteArray kLayout("\0\1\2layout\xff\n;=\"", 14);

} // namespace

TEST_F(ViewerSettingsTest, NoFileYet_HasNothing) {
  const ViewerSettings settings(mFile);

  EXPECT_TRUE(settings.GetWindowLayout().isEmpty());
  EXPECT_TRUE(settings.GetPageState().isEmpty());
  EXPECT_TRUE(settings.GetRecentCameras().GetAll().isEmpty());
}

TEST_F(ViewerSettingsTest, WhatIsKept_IsThereInTheNextRun) {
  {
    ViewerSettings settings(mFile);
    settings.SetWindowLayout(kLayout);
    settings.SetPageState(kLayout + "page");
    settings.SetRecentCameras(MakeCameras());
  }

  const ViewerSettings settings(mFile);

  EXPECT_EQ(settings.GetWindowLayout(), kLayout);
  EXPECT_EQ(settings.GetPageState(), kLayout + "page");
  EXPECT_EQ(settings.GetRecentCameras().GetAll(), MakeCameras().GetAll());
}

TEST_F(ViewerSettingsTest, FewerCamerasThanBefore_AreAllThatIsLeft) {
  {
    ViewerSettings settings(mFile);
    settings.SetRecentCameras(MakeCameras());
    settings.SetRecentCameras({});
  }

  EXPECT_TRUE(ViewerSettings(mFile).GetRecentCameras().GetAll().isEmpty());
  EXPECT_FALSE(Read().contains("Another"));
}

TEST_F(ViewerSettingsTest, PagesOfCameras_AreKeptApartAsLongAsTheCamerasAreRecent) {
  RecentCameras cameras;
  cameras.Add({"a/b=c", "First"});
  cameras.Add({"02:4b", "Second"});
  {
    ViewerSettings settings(mFile);
    settings.SetRecentCameras(cameras);
    settings.SetPageState("first", "a/b=c");
    settings.SetPageState("second", "02:4b");
    settings.SetPageState("unknown", "never shown");
  }

  ViewerSettings settings(mFile);
  EXPECT_EQ(settings.GetPageState("a/b=c"), "first");
  EXPECT_EQ(settings.GetPageState("02:4b"), "second");
  EXPECT_EQ(settings.GetPageState("another"), "unknown") << "what was kept last holds for all others";

  settings.SetRecentCameras({});
  EXPECT_EQ(settings.GetPageState("02:4b"), "unknown");
}

TEST_F(ViewerSettingsTest, HostSettingsOfACamera_AreItsOwnAsLongAsItIsRecent) {
  const HostSettings settings = {{{{"StreamBufferCountManual", "7"}, {"StreamFrameRetention", "123000"}},
                                  {{"LinkPacketSizeMode", "Fixed size, with \"quotes\"; µ"}}}};
  {
    ViewerSettings kept(mFile);
    kept.SetRecentCameras(MakeCameras());
    kept.SetHostSettings(settings, "4B5200000101");
    kept.SetHostSettings(settings, "never shown");
  }

  ViewerSettings next(mFile);
  EXPECT_EQ(next.GetHostSettings("4B5200000101"), settings);
  EXPECT_EQ(next.GetHostSettings("02:4b:52:00:77:10"), HostSettings());
  EXPECT_EQ(next.GetHostSettings("never shown"), HostSettings());

  next.SetHostSettings({{{}, {{"LinkCommandTimeout", "1"}}}}, "4B5200000101");
  EXPECT_EQ(next.GetHostSettings("4B5200000101"), (HostSettings{{{}, {{"LinkCommandTimeout", "1"}}}}))
      << "what is as the host begins with is kept no longer";
  next.SetRecentCameras({});
  EXPECT_EQ(next.GetHostSettings("4B5200000101"), HostSettings());
}

TEST_F(ViewerSettingsTest, HostSettingsThatNoHostHas_AreLeftOut) {
  HostSettings settings;
  for (int number = 0; number < 1000; ++number)
    settings[0].push_back({"Feature" + std::to_string(number), "1"});
  ViewerSettings kept(mFile);
  kept.SetRecentCameras(MakeCameras());

  kept.SetHostSettings(settings, "4B5200000101");

  EXPECT_EQ(kept.GetHostSettings("4B5200000101")[0].size(), 200U);
}

TEST_F(ViewerSettingsTest, NoFileToKeepThemIn_AreForgotten) {
  ViewerSettings settings{QString()};

  settings.SetWindowLayout(kLayout);
  settings.SetRecentCameras(MakeCameras());

  EXPECT_TRUE(settings.GetWindowLayout().isEmpty());
  EXPECT_TRUE(settings.GetRecentCameras().GetAll().isEmpty());
}

TEST_F(ViewerSettingsTest, LayoutThatSomebodyChanged_IsNone) {
  {
    ViewerSettings settings(mFile);
    settings.SetPageState(kLayout);
  }
  const QByteArray text = Read();
  const QByteArray encoded = kLayout.toBase64();
  ASSERT_TRUE(text.contains(encoded));

  for (const QByteArray& other :
       {QByteArray("AAAA"), QByteArray("!"), QByteArray(), encoded.chopped(4), QByteArray(1 << 20, 'A')}) {
    Write(QByteArray(text).replace(encoded, other));

    EXPECT_TRUE(ViewerSettings(mFile).GetPageState().isEmpty()) << other.left(40).toStdString();
  }
}

TEST_F(ViewerSettingsTest, DamagedFile_IsToldUntilItIsReplaced) {
  {
    ViewerSettings settings(mFile); // Makes the folder.
    settings.SetPageState(kLayout);
    EXPECT_EQ(settings.TakeTrouble(), "");
  }
  Write("[page\nno value\n");
  {
    ViewerSettings settings(mFile);
    const QString trouble = settings.TakeTrouble();
    EXPECT_TRUE(trouble.contains(mFile)) << trouble.toStdString();
    settings.SetPageState(kLayout);
  }
  EXPECT_EQ(ViewerSettings(mFile).TakeTrouble(), "");
  EXPECT_EQ(ViewerSettings({}).TakeTrouble(), "");
}

TEST_F(ViewerSettingsTest, FolderThatCannotBe_IsToldOnceWithTheReason) {
  TemporaryFolder::WriteFile(mFolder.GetFile("settings"), "a file where the folder is to be");
  ViewerSettings settings(mFile);
  ASSERT_EQ(settings.TakeTrouble(), "");
  EXPECT_EQ(settings.TakeWriteTrouble(), "");

  settings.SetPageState(kLayout);
  settings.Write();

  const QString trouble = settings.TakeWriteTrouble();
  EXPECT_TRUE(trouble.contains(mFile + ": Not a directory.")) << trouble.toStdString();
  settings.Write();
  EXPECT_EQ(settings.TakeWriteTrouble(), "");
}

TEST_F(ViewerSettingsTest, DiskThatTakesNoMore_IsToldWithTheReasonAlsoAfterADamage) {
  {
    ViewerSettings settings(mFile); // Makes the folder.
    settings.SetPageState(kLayout);
  }
  Write("[page\nno value\n");
  ViewerSettings settings(mFile);
  ASSERT_TRUE(settings.TakeTrouble().contains("damaged"));
  const FileSizeLimit full(0);

  settings.SetPageState(kLayout);
  settings.Write();

  const QString trouble = settings.TakeWriteTrouble();
  EXPECT_TRUE(trouble.contains(mFile + ": File too large.")) << trouble.toStdString();
}

TEST_F(ViewerSettingsTest, WhatCouldBeWritten_IsNoTrouble) {
  ViewerSettings settings(mFile);
  settings.SetPageState(kLayout);

  settings.Write();

  EXPECT_EQ(settings.TakeWriteTrouble(), "");
  EXPECT_EQ(ViewerSettings(mFile).GetPageState(), kLayout);
}

TEST_F(ViewerSettingsTest, LayoutOfMoreThan64KiB_IsNone) {
  // A number and a colon go before the bytes, each three of which become four letters.
  constexpr qsizetype kMostThatFits = ((1 << 16) - 6) / 4 * 3;
  ViewerSettings settings(mFile);

  settings.SetPageState(QByteArray(kMostThatFits, 'x'));
  EXPECT_EQ(settings.GetPageState().size(), kMostThatFits);

  settings.SetPageState(QByteArray(kMostThatFits + 6, 'x'));
  EXPECT_EQ(settings.GetPageState().size(), 0);
}

TEST_F(ViewerSettingsTest, FileOfMoreThan16MiB_IsNeitherReadNorTouched) {
  constexpr std::uintmax_t kMost = std::uintmax_t{16} << 20U;
  {
    ViewerSettings settings(mFile); // Makes the folder.
    settings.SetPageState(kLayout);
  }
  std::filesystem::resize_file(mFile.toStdString(), kMost + 1);
  {
    ViewerSettings settings(mFile);
    const QString trouble = settings.TakeTrouble();
    EXPECT_TRUE(trouble.contains(mFile) && trouble.contains("16 MiB")) << trouble.toStdString();
    settings.SetPageState(kLayout + "new");
    settings.Write();
    EXPECT_EQ(settings.TakeWriteTrouble(), "");
    EXPECT_TRUE(settings.GetPageState().isEmpty());
  }
  EXPECT_EQ(std::filesystem::file_size(mFile.toStdString()), kMost + 1);
  std::filesystem::resize_file(mFile.toStdString(), kMost);
  EXPECT_EQ(ViewerSettings(mFile).GetPageState(), kLayout);
}

TEST_F(ViewerSettingsTest, PipeInTheFilesPlace_IsRefusedWithoutWaiting) {
  std::filesystem::create_directory(mFolder.GetFile("settings"));
  ASSERT_EQ(::mkfifo(mFile.toStdString().c_str(), 0600), 0);

  ViewerSettings settings(mFile);

  const QString trouble = settings.TakeTrouble();
  EXPECT_TRUE(trouble.contains(mFile + ", is no file")) << trouble.toStdString();
}

TEST_F(ViewerSettingsTest, FileThatIsNone_HarmsNothingAndIsReplaced) {
  {
    ViewerSettings settings(mFile); // Makes the folder.
    settings.SetPageState(kLayout);
  }
  struct Row {
    const char* name;
    QByteArray text;
  };
  for (const Row& row :
       {Row{"nothing", ""}, Row{"no text", QByteArray("\0\xff\xfe[[[\0=", 8)},
        Row{"another kind of file", "<?xml version=\"1.0\"?><a b='c'/>"},
        Row{"a line without an end", QByteArray(100'000, 'x')},
        Row{"wrong kinds of values", "[cameras]\nrecent\\size=@Invalid()\nrecent=7\n[page]\nstate=@Variant(\\0\\0)\n"},
        Row{"many cameras", "[cameras]\nrecent\\size=2000000000\nrecent\\1\\id=a\nrecent\\1\\name=A\n"},
        Row{"fewer cameras than none", "[cameras]\nrecent\\size=-5\nrecent\\1\\id=a\n"}}) {
    SCOPED_TRACE(row.name);
    Write(row.text);

    {
      ViewerSettings settings(mFile);
      EXPECT_TRUE(settings.GetPageState().isEmpty());
      EXPECT_LE(settings.GetRecentCameras().GetAll().size(), 1);
      settings.SetPageState(kLayout);
      settings.SetRecentCameras(MakeCameras());
    }

    const ViewerSettings settings(mFile);
    EXPECT_EQ(settings.GetPageState(), kLayout);
    EXPECT_EQ(settings.GetRecentCameras().GetAll(), MakeCameras().GetAll());
  }
}
