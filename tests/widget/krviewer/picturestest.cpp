// The pictures of the viewer's windows as files: whole or not at all, and in the place of files alone.

#include "pictures.h"

#include "filesizelimit.h"
#include "temporaryfolder.h"
#include "windowwait.h"

#include <QImage>
#include <QWidget>

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class Pictures : public testing::Test {
protected:
  Pictures() {
    mWindow.resize(60, 40);
    mWindow.show();
  }
  KrResult Write() { return krviewer::WriteWindowPicture(mWindow, QString::fromStdString(mFolder.GetPath().string())); }

  const TemporaryFolder mFolder;
  const std::string mFile = mFolder.GetFile("window.png");
  QWidget mWindow;
};

} // namespace

TEST_F(Pictures, OfAWindow_ReplacesTheOneBeforeAndLeavesNothingElse) {
  TemporaryFolder::WriteFile(mFile, "an older one");

  const KrResult result = Write();

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(QImage(QString::fromStdString(mFile)).size(), mWindow.size());
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("window.png"));
}

TEST_F(Pictures, OfAWindowOnAFullDisk_LeavesTheOneBeforeAndSaysWhy) {
  TemporaryFolder::WriteFile(mFile, "old");
  KrResult result;
  {
    const FileSizeLimit full(20);
    result = Write();
  }

  EXPECT_EQ(result.GetCode(), KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(HasSubstr(mFile), HasSubstr("File too large")));
  EXPECT_EQ(TemporaryFolder::ReadFile(mFile), "old");
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("window.png"));
}

TEST_F(Pictures, PipeInTheirPlace_IsRefusedWithoutWaiting) {
  ASSERT_EQ(::mkfifo(mFile.c_str(), 0600), 0);

  EXPECT_EQ(Write().GetCode(), KrResult::Code::InvalidInput);

  EXPECT_TRUE(std::filesystem::is_fifo(mFile));
}
