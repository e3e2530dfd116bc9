#include "portscommand.h"

#include "labfixture.h"
#include "temporaryfolder.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace krtool {
namespace {

using testing::HasSubstr;

// Of a user whose maps are the test's.
class PortsCommand : public LabTest {
protected:
  PortsCommand() { setenv("XDG_CONFIG_HOME", mFolder.GetPath().c_str(), 1); }
  ~PortsCommand() override { unsetenv("XDG_CONFIG_HOME"); }

  std::string Run(const std::string& aDevice, int aExitCode = 0) {
    std::ostringstream out;
    std::ostringstream errors;
    EXPECT_EQ(RunPorts(mSystem, {.verb = Verb::Ports, .device = aDevice}, out, errors), aExitCode) << errors.str();
    mErrors = errors.str();
    return out.str();
  }

  TemporaryFolder mFolder;
  std::string mErrors;
};

TEST_F(PortsCommand, CameraWithLinesOfItsTransport_ListsThem) {
  EXPECT_EQ(Run("sim-mono"), "port\toffered\tbehind it\tmissing\n"
                             "Serial0\tyes\ttransport\t\n"
                             "Serial1\tyes\ttransport\t\n"
                             "Bulk0\tyes\ttransport\t\n");
  EXPECT_EQ(mErrors, "");
}

TEST_F(PortsCommand, MapThatNearlyFits_IsListedWithWhatIsMissing) {
  std::filesystem::create_directories(mFolder.GetPath() / "krgui/serial-features.d");
  TemporaryFolder::WriteFile(mFolder.GetFile("krgui/serial-features.d/mine.yaml"),
                             "serialFeatures:\n"
                             "  - {name: mine, way: registers, ports: {Bulk3: ~}, receivedCount: Width,\n"
                             "     receiveData: NoSuchFeature, transmitData: DeviceUserID}\n");

  EXPECT_THAT(Run("sim-mono"), HasSubstr("\nBulk3\tno\tmap mine\tNoSuchFeature\n"));
}

TEST_F(PortsCommand, CameraThatIsNotThere_IsTold) {
  EXPECT_EQ(Run("nobody", 1), "");

  EXPECT_THAT(mErrors, HasSubstr("nobody"));
}

} // namespace
} // namespace krtool
