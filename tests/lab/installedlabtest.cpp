#include "krsystem/krsystem.h"
#include "krsystem/transportregistry.h"
#include "krtransport/krtransport.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <string>

using testing::HasSubstr;

namespace {

KrResult Install(const KrString& aLabFile) {
  return KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true, .labFile = aLabFile});
}

class InstalledLabTest : public testing::Test {
protected:
  KrString Write(const char* aName, const std::string& aText) {
    const std::string file = mFolder.GetFile(aName);
    TemporaryFolder::WriteFile(file, aText);
    return file;
  }

  const TemporaryFolder mFolder;
};

} // namespace

// One test, as a process has one lab.
TEST_F(InstalledLabTest, Install_LabFiles_TheFirstGoodOneIsTheProcessesLab) {
  const KrString good =
      Write("good.yaml", "adapters: [{name: lab7, addresses: [{address: 10.0.0.1, mask: 255.0.0.0}]}]");
  const KrString bad = Write("bad.yaml", "adapters: []\ncontrolers: []\n");

  const KrResult refused = Install(bad);
  EXPECT_TRUE(refused == KrResult::Code::BadData);
  EXPECT_THAT(refused.GetDescription().ToUtf8(), HasSubstr("bad.yaml:2:1: "));
  EXPECT_TRUE(Install(good + ".none") == KrResult::Code::NotFound);
  EXPECT_TRUE(krsystem::GetTransports().empty()) << "a lab that is no good registers nothing";

  EXPECT_TRUE(Install(good).IsOK());
  EXPECT_TRUE(Install(good).IsOK()) << "the same again";
  EXPECT_TRUE(Install("").IsOK()) << "any lab will do";
  EXPECT_TRUE(Install(bad) == KrResult::Code::WrongState) << "another lab";

  EXPECT_EQ(krsystem::GetTransports().size(), 1u);
  KrSystem system;
  ASSERT_EQ(system.GetInterfaceCount(), 1u);
  EXPECT_EQ(system.GetInterface(0)->GetUniqueID(), "/lab7") << "an adapter without a MAC address";
}
