#include "clprotocol/cldriverlist.h"

#include "driverfolder.h"

#include <gmock/gmock.h>

namespace krcamerabridge {
namespace {

using krtest::DriverFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::vector<std::string> ListPaths() {
  std::vector<std::string> paths;
  for (const CLDriverFile& file : ListCLDrivers())
    paths.push_back(file.GetPath());
  return paths;
}

class DriverListTest : public testing::Test {
protected:
  ~DriverListTest() override { unsetenv("GENICAM_CLPROTOCOL"); }
  std::string GetPath(const DriverFolder& aFolder, const char* aName) { return aFolder.GetDirectory() + '/' + aName; }

  DriverFolder first;
  DriverFolder second;
};

TEST_F(DriverListTest, Drivers_AreTheLibrariesOfTheSystemsSubdirectoryByName) {
  first.Install("libb.so");
  first.Install("liba.so");
  first.Install("c.so");
  first.Install("libd.so.1");
  first.Write("libe.so", "beside the sub-directory");
  std::filesystem::create_directory(first.GetDirectory() + "/libf.so");
  SetCLDriverDirectories({first.GetRoot() + '/'});

  EXPECT_THAT(ListPaths(), ElementsAre(GetPath(first, "liba.so"), GetPath(first, "libb.so")));
}

TEST_F(DriverListTest, DebugTwins_AreLeftOutBesideTheirOther) {
  first.Install("liba.so");
  first.Install("liba.debug.so");
  first.Install("libb.debug.so");
  SetCLDriverDirectories({first.GetRoot()});

  EXPECT_THAT(ListPaths(), ElementsAre(GetPath(first, "liba.so"), GetPath(first, "libb.debug.so")));
}

TEST_F(DriverListTest, DirectoriesOfTheVariable_ComeFirstPartedByColonOrSemicolonAndOnce) {
  first.Install("liba.so");
  second.Install("libb.so");
  SetCLDriverDirectories({second.GetRoot(), first.GetRoot()});

  for (const char* separator : {":", ";", ":;:"}) {
    const std::string variable = "/nowhere" + std::string(separator) + first.GetRoot() + separator;
    setenv("GENICAM_CLPROTOCOL", variable.c_str(), 1);

    EXPECT_THAT(ListPaths(), ElementsAre(GetPath(first, "liba.so"), GetPath(second, "libb.so"))) << separator;
  }
}

TEST_F(DriverListTest, WithoutDirectories_ThereAreNone) {
  SetCLDriverDirectories({"/nowhere"});

  EXPECT_THAT(ListPaths(), IsEmpty());
}

TEST_F(DriverListTest, Drivers_AreOfALimitedNumber) {
  for (int i = 0; i < 300; ++i)
    first.Install("lib" + std::to_string(i) + ".so");
  SetCLDriverDirectories({first.GetRoot()});

  EXPECT_EQ(ListPaths().size(), 256u);
}

TEST_F(DriverListTest, DirectoriesOfTheVariable_AreOfALimitedNumber) {
  first.Install("liba.so");
  second.Install("libb.so");
  std::string variable;
  for (int i = 1; i < 64; ++i)
    variable += "/nowhere/" + std::to_string(i) + ':';
  setenv("GENICAM_CLPROTOCOL", (variable + first.GetRoot() + ':' + second.GetRoot()).c_str(), 1);

  EXPECT_THAT(ListPaths(), ElementsAre(GetPath(first, "liba.so")));
}

TEST_F(DriverListTest, Descriptions_AreOfALimitedNumber) {
  for (int i = 0; i < 1100; ++i)
    first.Write("SchemaVersion.1.1@Maker@XMLVersion.1.0." + std::to_string(i) + ".xml", "");

  EXPECT_EQ(ListCLXMLFiles({first.GetRoot(), first.GetDirectory(), "liba.so"}).size(), 1000u);
}

TEST_F(DriverListTest, Descriptions_AreInBothDirectoriesWithIdentifiersForNames) {
  first.Write("SchemaVersion.1.1@Maker@XMLVersion.1.0.0.xml", "");
  first.Write("SchemaVersion.1.1@Maker@XMLVersion.1.0.0.zip", "");
  first.Write("readme.xml", "");
  first.Write(KR_CLPROTOCOL_SYSTEM "/SchemaVersion.1.1@Maker@XMLVersion.2.0.0.xml", "");
  std::vector<std::string> ids;

  for (const CLXMLFile& file : ListCLXMLFiles({first.GetRoot(), first.GetDirectory(), "liba.so"}))
    ids.push_back(file.xmlID);

  EXPECT_THAT(ids, UnorderedElementsAre("SchemaVersion.1.1@Maker@XMLVersion.1.0.0",
                                        "SchemaVersion.1.1@Maker@XMLVersion.2.0.0"));
}

} // namespace
} // namespace krcamerabridge
