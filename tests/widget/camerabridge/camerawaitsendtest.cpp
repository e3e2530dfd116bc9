// Every wait of the camera bridge manager, ended by every way in which the window or what it is about can end.

#include "camerawaitingfixture.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"

#include <cstdlib>
#include <ostream>
#include <tuple>

namespace krgui {

namespace {

class WaitsEnd;

struct Work {
  const char* name;
  void (*prepare)(WaitsEnd& aTest);
  void (*begin)(WaitsEnd& aTest);
};
struct Ending {
  const char* name;
  void (*end)(WaitsEnd& aTest);
};
void PrintTo(const Work& aWork, std::ostream* aStream) {
  *aStream << aWork.name;
}
void PrintTo(const Ending& anEnding, std::ostream* aStream) {
  *aStream << anEnding.name;
}

class WaitsEnd : public WaitingTest, public testing::WithParamInterface<std::tuple<Work, Ending>> {
public:
  WaitsEnd() {
    setenv("KRGUI_CLPROTOCOL_HOST", KR_TEST_HOST, 1);
    setenv("GENICAM_CLPROTOCOL", KR_TEST_DRIVERS, 1);
  }

  void Prepare() {}
  void ChooseCLProtocol() {
    Pick(id::kDevicePort, "Bulk0");
    Click(id::kCLProtocol);
    ASSERT_TRUE(WaitFor([this] { return IsEnabled(id::kProbe); }));
  }
  void ChooseAndProbe() {
    ChooseCLProtocol();
    Click(id::kProbe);
    ASSERT_TRUE(IsEnabled(id::kCLProtocolConnect));
  }
  void ChooseGenCP() { Click(id::kGenCP); }
  void ConnectByGenCP() { ConnectGenCP(); }
  void ChooseTextCamera() {
    Pick(id::kDevicePort, "Serial1");
    Click(id::kCameraFile);
    ChooseFile(kTextCameraFile);
  }
  void ConnectAndSave() {
    ConnectGenCP();
    ASSERT_TRUE(mWindow->Save(mWriter).IsOK());
    const std::string file = mFolder.GetFile("bridges.xml");
    ASSERT_TRUE(mWriter.Save(file).IsOK());
    ASSERT_TRUE(mReader.Load(file).IsOK());
  }
  void LookFor() { Click(id::kGenCP); }
  void Connect() { Click(id::kGenCPConnect); }
  void Probe() { Click(id::kProbe); }
  void ConnectCLProtocol() { Click(id::kCLProtocolConnect); }
  void LoadFile() { Click(id::kLoad); }
  void Disconnect() { Click(id::kNone); }
  void SetNoDevice() { EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK()); }
  void Load() {
    KrStringList errors;
    EXPECT_EQ(mWindow->Load(mReader, errors), KrResult::Code::Cancelled);
  }
  void Save() {
    KrConfigurationWriter writer;
    EXPECT_EQ(mWindow->Save(writer), KrResult::Code::Cancelled);
  }

  void Cancel() {
    QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
    EXPECT_NE(mWindow->GetWidget(), nullptr);
  }
  void Close() {
    EXPECT_TRUE(mWindow->Close().IsOK());
    EXPECT_EQ(mWindow->GetWidget(), nullptr);
  }
  void Delete() { mWindow.reset(); }
  void TakeDeviceOut() {
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    EXPECT_EQ(mWindow->GetBridgeCount(), 0);
    mDevice.reset();
  }

private:
  TemporaryFolder mFolder;
  KrConfigurationWriter mWriter;
  KrConfigurationReader mReader;
};

template <void (WaitsEnd::*kStep)()>
void Do(WaitsEnd& aTest) {
  (aTest.*kStep)();
}

TEST_P(WaitsEnd, Ending_EndsTheWaitAndNothingMoreHappens) {
  const auto& [work, ending] = GetParam();
  Open();
  work.prepare(*this);
  WhileItWaits([this, &end = ending.end](QWidget&) {
    // Ends what waits for the camera as it is; what takes leave of the camera has time to.
    end(*this);
    mClock->SetStopped(false);
  });

  work.begin(*this);

  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    All, WaitsEnd,
    testing::Combine(
        testing::Values(Work{"LookingForACamera", Do<&WaitsEnd::Prepare>, Do<&WaitsEnd::LookFor>},
                        Work{"Connecting", Do<&WaitsEnd::ChooseGenCP>, Do<&WaitsEnd::Connect>},
                        Work{"Probing", Do<&WaitsEnd::ChooseCLProtocol>, Do<&WaitsEnd::Probe>},
                        Work{"ConnectingByCLProtocol", Do<&WaitsEnd::ChooseAndProbe>, Do<&WaitsEnd::ConnectCLProtocol>},
                        Work{"LoadingACameraFile", Do<&WaitsEnd::ChooseTextCamera>, Do<&WaitsEnd::LoadFile>},
                        Work{"Disconnecting", Do<&WaitsEnd::ConnectByGenCP>, Do<&WaitsEnd::Disconnect>},
                        Work{"EndingTheBridges", Do<&WaitsEnd::ConnectByGenCP>, Do<&WaitsEnd::SetNoDevice>},
                        Work{"Loading", Do<&WaitsEnd::ConnectAndSave>, Do<&WaitsEnd::Load>},
                        Work{"Saving", Do<&WaitsEnd::ConnectByGenCP>, Do<&WaitsEnd::Save>}),
        testing::Values(Ending{"Cancel", Do<&WaitsEnd::Cancel>}, Ending{"Close", Do<&WaitsEnd::Close>},
                        Ending{"Delete", Do<&WaitsEnd::Delete>},
                        Ending{"TakingTheDeviceOut", Do<&WaitsEnd::TakeDeviceOut>})),
    [](const auto& aInfo) { return std::string(std::get<0>(aInfo.param).name) + "_" + std::get<1>(aInfo.param).name; });

} // namespace

} // namespace krgui
