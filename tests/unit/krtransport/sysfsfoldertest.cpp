#include "usb3vision/sysfsfolder.h"

#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace krtransport;

class SysfsFolderTest : public testing::Test {
protected:
  void Write(const std::string& aName, const std::string& aText) {
    TemporaryFolder::WriteFile(mFolder.GetFile(aName), aText);
  }

  TemporaryFolder mFolder;
};

TEST_F(SysfsFolderTest, ReadText_LongerThanAnyAttribute_IsCutToWhatCanBeShown) {
  Write("product", std::string(1 << 20, 'x'));

  EXPECT_LE(SysfsFolder(mFolder.GetPath()).ReadText("product").size(), 384u);
}

TEST_F(SysfsFolderTest, ReadBytes_LongerThanIsAskedFor_GivesTheBeginning) {
  Write("descriptors", std::string(100, 'x') + std::string(1000, 'y'));

  EXPECT_EQ(SysfsFolder(mFolder.GetPath()).ReadBytes("descriptors", 100),
            std::vector<std::uint8_t>(100, std::uint8_t{'x'}));
}

TEST_F(SysfsFolderTest, ListFolder_OfMoreThanIsRead_GivesThatMany) {
  for (int i = 0; i < 4200; ++i)
    std::ofstream(mFolder.GetFile(std::to_string(i)));

  EXPECT_EQ(ListFolder(mFolder.GetPath()).size(), 4096u);
}

TEST_F(SysfsFolderTest, ReadLinkName_IsTheLastPartOfTheTargetAlone) {
  std::filesystem::create_symlink("../../../etc/\x1B[31mdriver", mFolder.GetFile("driver"));

  const std::string name = SysfsFolder(mFolder.GetPath()).ReadLinkName("driver");

  EXPECT_EQ(name.find('/'), std::string::npos);
  EXPECT_EQ(name.find('\x1B'), std::string::npos);
  EXPECT_NE(name.find("driver"), std::string::npos);
}

} // namespace
