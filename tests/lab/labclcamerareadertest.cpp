// Frame grabbers and Camera Link cameras in lab files.

#include "badlabfiles.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

using krtransport::Lab;
using krtransport::LabGEVCamera;
using testing::ElementsAre;

namespace {

// What a device's keys are written behind, their lines 6 and following.
#define KR_DEVICE "adapters:\n- name: a\n  devices:\n  - kind: gigeVision\n    mac: 02:00:00:00:00:01\n"
// The same of one port's camera: it begins at 6:57.
#define KR_CAMERA KR_DEVICE "    serialPorts: [{port: Bulk0, behind: camera, camera: "

// Each value other than the default.
constexpr const char* kEveryKey = KR_DEVICE R"(
    frameGrabber: {sources: 3, pocl: off}
    serialPorts:
      - port: Bulk0
        behind: camera
        silent: true
        repeatedReceived: {every: 5}
        repeatedSent: {next: 6}
        corruptedReceived: {next: 7}
        corruptedSent: {every: 8}
        camera:
          protocol: GenCP
          vendor: V
          model: M
          family: F
          version: "2.0"
          info: I
          serial: S
          name: N
          sensor: {width: 64, height: 16, frameRate: 2.5, pixelFormats: [Mono10, Mono8]}
          descriptions: [zipped]
          rates: [9600, 921600]
          pending: 100
          packetBytes: 64
          confirmation: 500
          pocl: true
)";

const BadLabFile kBadRows[] = {
    {"camera without its keys", KR_DEVICE "    serialPorts: [{port: Bulk0, behind: camera}]\n", "6:19",
     "a serial port with a camera behind it needs the key \"camera\""},
    {"camera behind something else", KR_DEVICE "    serialPorts: [{port: Bulk0, camera: {protocol: text}}]\n", "6:41",
     "\"camera\" goes with \"behind: camera\""},
    {"camera that is no map", KR_CAMERA "GenCP}]\n", "6:57", "has to be keys with values"},
    {"camera without a protocol", KR_CAMERA "{model: M}}]\n", "6:57",
     "a Camera Link camera needs the key \"protocol\""},
    {"unknown protocol", KR_CAMERA "{protocol: CoaXPress}}]\n", "6:68", "one of GenCP, CLProtocol, text"},
    {"unknown key", KR_CAMERA "{protocol: text, modle: M}}]\n", "6:74", "is \"model\" meant?"},
    {"text that is too long",
     KR_CAMERA "{protocol: text, model: 0123456789012345678901234567890123456789012345678901234567890123x}}]\n", "6:81",
     "64"},
    {"sensor out of step", KR_CAMERA "{protocol: text, sensor: {width: 65}}}]\n", "6:82", "multiple of 4"},
    {"no description", KR_CAMERA "{protocol: GenCP, descriptions: []}}]\n", "6:89", "\"descriptions\" has to have one"},
    {"unknown description", KR_CAMERA "{protocol: GenCP, descriptions: [gzip]}}]\n", "6:90", "one of plain, zipped"},
    {"too many descriptions",
     KR_CAMERA "{protocol: GenCP, descriptions: [plain, plain, plain, plain, plain, plain, plain, plain, plain]}}]\n",
     "6:146", "more than 8 items"},
    {"descriptions of text", KR_CAMERA "{protocol: text, descriptions: [plain]}}]\n", "6:88",
     "says nothing of a camera that speaks text"},
    {"rates without the first", KR_CAMERA "{protocol: text, rates: [19200]}}]\n", "6:81", "have to have 9600"},
    {"rate that GenCP does not know", KR_CAMERA "{protocol: GenCP, rates: [9600, 12000]}}]\n", "6:82",
     "have to be of 9600, 19200"},
    {"rate that is none", KR_CAMERA "{protocol: text, rates: [9600, fast]}}]\n", "6:88", "whole number"},
    {"pending for too long", KR_CAMERA "{protocol: text, pending: 60001}}]\n", "6:83", "0 to 60000"},
    {"packets that are too small", KR_CAMERA "{protocol: GenCP, packetBytes: 63}}]\n", "6:88", "64 to 1024"},
    {"packets of another protocol", KR_CAMERA "{protocol: text, packetBytes: 64}}]\n", "6:87",
     "goes with \"protocol: GenCP\""},
    {"confirmation of another protocol", KR_CAMERA "{protocol: CLProtocol, confirmation: 64}}]\n", "6:94",
     "goes with \"protocol: GenCP\""},
    {"checked answers of another protocol", KR_CAMERA "{protocol: GenCP, checkedAnswers: true}}]\n", "6:91",
     "goes with \"protocol: text\""},
    {"no confirmation", KR_CAMERA "{protocol: GenCP, confirmation: 0}}]\n", "6:89", "1 to 60000"},
    {"power that is no flag", KR_CAMERA "{protocol: text, pocl: maybe}}]\n", "6:80", "true or false"},
    {"power from nowhere", KR_CAMERA "{protocol: text, pocl: true}}]\n", "6:80", "needs a \"frameGrabber\""},
    {"frame grabber that is no map", KR_DEVICE "    frameGrabber: yes\n", "6:19", "has to be keys with values"},
    {"no source", KR_DEVICE "    frameGrabber: {sources: 0}\n", "6:29", "1 to 8"},
    {"too many sources", KR_DEVICE "    frameGrabber: {sources: 9}\n", "6:29", "1 to 8"},
    {"unknown power", KR_DEVICE "    frameGrabber: {pocl: auto}\n", "6:26", "one of none, off, on"},
    {"unknown key of a frame grabber", KR_DEVICE "    frameGrabber: {source: 1}\n", "6:20", "is \"sources\" meant?"},
    {"repeated bytes of no number", KR_DEVICE "    serialPorts: [{port: Bulk0, repeatedSent: {every: 0}}]\n", "6:55",
     "whole number from 1"},
    {"unknown key of corrupted bytes", KR_DEVICE "    serialPorts: [{port: Bulk0, corruptedSent: {evry: 1}}]\n", "6:49",
     "is \"every\" meant?"},
    {"silence that is no flag", KR_DEVICE "    serialPorts: [{port: Bulk0, silent: 3}]\n", "6:41", "true or false"},
};

class LabCLCameraRefusals : public BadLabFiles {};

} // namespace

TEST_P(LabCLCameraRefusals, Parse_BadCamera_SaysWhereAndWhy) {
  ExpectPlaceAndReason();
}

INSTANTIATE_TEST_SUITE_P(Cameras, LabCLCameraRefusals, testing::ValuesIn(kBadRows));

TEST(LabCLCameraReader, Parse_EveryKey_IsTaken) {
  Lab lab;
  const KrResult result = Parse(kEveryKey, lab);
  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();

  const auto device = std::get<LabGEVCamera>(lab.adapters[0].devices[0]);

  EXPECT_EQ(device.frameGrabber.sources, 3u);
  EXPECT_EQ(device.frameGrabber.pocl, krtransport::LabPocl::Off);
  ASSERT_EQ(device.serialPorts.size(), 1u);
  const krtransport::LabSerialPort& port = device.serialPorts[0];
  EXPECT_EQ(port.behind, krtransport::LabLineEnd::Camera);
  EXPECT_TRUE(port.isSilent);
  EXPECT_EQ(port.received.repeated.every, 5u);
  EXPECT_EQ(port.sent.repeated.next, 6u);
  EXPECT_EQ(port.received.corrupted.next, 7u);
  EXPECT_EQ(port.sent.corrupted.every, 8u);
  const krtransport::LabCLCamera& camera = port.camera;
  EXPECT_EQ(camera.protocol, krtransport::CLCameraProtocol::GenCP);
  EXPECT_EQ(camera.vendorName, "V");
  EXPECT_EQ(camera.modelName, "M");
  EXPECT_EQ(camera.familyName, "F");
  EXPECT_EQ(camera.version, "2.0");
  EXPECT_EQ(camera.manufacturerInfo, "I");
  EXPECT_EQ(camera.serialNumber, "S");
  EXPECT_EQ(camera.userDefinedName, "N");
  EXPECT_EQ(camera.sensorWidth, 64u);
  EXPECT_THAT(camera.pixelFormats, ElementsAre(KrPixel::Mono10, KrPixel::Mono8));
  EXPECT_THAT(camera.descriptions, ElementsAre(krtransport::DescriptionFormat::Zipped));
  EXPECT_THAT(camera.rates, ElementsAre(9600, 921600));
  EXPECT_EQ(camera.pendingMs, 100u);
  EXPECT_EQ(camera.packetBytes, 64u);
  EXPECT_EQ(camera.confirmationMs, 500u);
  EXPECT_TRUE(camera.isPoweredByCable);
}

TEST(LabCLCameraReader, Parse_CountedDevices_HaveACameraEach) {
  Lab lab;

  ASSERT_TRUE(Parse(KR_DEVICE "    count: 2\n    serialPorts: [{port: Serial0, behind: camera,"
                              " camera: {protocol: text, serial: C09}}]\n",
                    lab)
                  .IsOK());

  EXPECT_EQ(std::get<LabGEVCamera>(lab.adapters[0].devices[1]).serialPorts[0].camera.serialNumber, "C10");
}

TEST(LabCLCameraReader, Parse_TheExamplesOfTheDocumentation_AreLabs) {
  std::ifstream file(KR_LAB_DOCUMENTATION);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  constexpr std::string_view kFence = "```yaml\n";
  int examples = 0;
  for (std::size_t begin = text.find(kFence); begin != std::string::npos; begin = text.find(kFence, begin + 1)) {
    const std::size_t first = begin + kFence.size();
    Lab lab;
    const KrResult result = Parse(text.substr(first, text.find("```", first) - first), lab);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    ++examples;
  }

  EXPECT_EQ(examples, 2);
}
