// Which numbers a port that is made must not have.

#include "krserial/krtakencomports.h"
#include "hostfolders.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
#include <set>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class KrTakenCOMPortsTest : public testing::Test {
protected:
  static std::set<std::uint32_t> GetTaken() {
    std::set<std::uint32_t> numbers = {4000};
    const KrResult result = KrTakenCOMPorts::GetNumbers(numbers);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    return numbers;
  }

  HostFolders mHost;
};

} // namespace

TEST_F(KrTakenCOMPortsTest, HostWithoutPorts_HasNone) {
  std::filesystem::remove(mHost.GetFile("links"));

  EXPECT_THAT(GetTaken(), IsEmpty());
}

TEST_F(KrTakenCOMPortsTest, NamesInTheFolderOfLinks_AreTakenWhereverTheyLead) {
  mHost.Link("com7", mHost.GetFile("dev/ttyUSB0"));
  mHost.Link("COM3", "/dev/null");
  TemporaryFolder::WriteFile(mHost.GetLink("Com5"), "no link");
  mHost.Link("com01", "/dev/null");
  mHost.Link("other", "/dev/null");

  EXPECT_THAT(GetTaken(), ElementsAre(3U, 5U, 7U));
}

TEST_F(KrTakenCOMPortsTest, AdapterThatWasPulled_KeepsItsNumber) {
  mHost.AddUsb("ttyUSB0", {.serial = "A"});
  std::vector<KrHostSerialPort> ports;
  ASSERT_TRUE(KrHostSerialPorts::List(ports).IsOK());
  mHost.RemoveUsb("ttyUSB0", "1-1");
  ASSERT_TRUE(KrHostSerialPorts::List(ports).IsOK());
  ASSERT_THAT(ports, IsEmpty());

  EXPECT_THAT(GetTaken(), ElementsAre(1U));
}

TEST_F(KrTakenCOMPortsTest, NumbersThatCannotBeRead_AreAFailureThatKeepsTheList) {
  std::filesystem::create_directory(mHost.GetFile("own"));
  TemporaryFolder::WriteFile(mHost.GetFile("own/numbers"), "nonsense");
  std::set<std::uint32_t> numbers = {4000};

  EXPECT_EQ(KrTakenCOMPorts::GetNumbers(numbers), KrResult::Code::BadData);

  EXPECT_THAT(numbers, ElementsAre(4000U));
}

TEST_F(KrTakenCOMPortsTest, FolderOfLinksThatIsNone_IsSystemError) {
  std::filesystem::remove(mHost.GetFile("links"));
  TemporaryFolder::WriteFile(mHost.GetFile("links"), "no folder");
  std::set<std::uint32_t> numbers;

  EXPECT_EQ(KrTakenCOMPorts::GetNumbers(numbers), KrResult::Code::SystemError);
}
