#include "simulation/cameradescription.h"
#include "labcameras.h"
#include "labfixture.h"

#include <gmock/gmock.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <set>
#include <string>
#include <vector>

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* kFeatures[] = {
    "DeviceVendorName",
    "DeviceModelName",
    "DeviceSerialNumber",
    "DeviceUserID",
    "TimestampLatch",
    "TimestampLatchValue",
    "DeviceTemperature",
    "SimulatedCalibration",
    "SimulatedFault",
    "SimulatedFaultyValue",
    "Width",
    "Height",
    "WidthMax",
    "HeightMax",
    "OffsetX",
    "OffsetY",
    "ReverseX",
    "PixelFormat",
    "PayloadSize",
    "AcquisitionMode",
    "AcquisitionStart",
    "AcquisitionStop",
    "AcquisitionFrameCount",
    "AcquisitionFrameRateEnable",
    "AcquisitionFrameRate",
    "ResultingFrameRate",
    "ExposureMode",
    "ExposureTime",
    "TriggerSelector",
    "TriggerMode",
    "TriggerSource",
    "TriggerSoftware",
    "TriggerActivation",
    "TriggerDelay",
    "ChunkModeActive",
    "ChunkSelector",
    "ChunkEnable",
    "ChunkFrameID",
    "ChunkExposureTime",
    "ChunkTimestamp",
    "Gain",
    "TestPattern",
    "GevSCPSPacketSize",
    "TLParamsLocked",
};

// The children of the nodes that the description has, in an order that agrees with the schema's for each of them.
constexpr const char* kChildOrder[] = {
    "ToolTip",        "DisplayName",  "Visibility", "pIsAvailable", "pIsLocked",  "Streamable", "pFeature",
    "EnumEntry",      "Address",      "pIndex",     "Length",       "AccessMode", "pPort",      "Cachable",
    "PollingTime",    "pInvalidator", "Sign",       "Endianess",    "pVariable",  "Formula",    "pValue",
    "CommandValue",   "PollingTime",  "Min",        "Max",          "pMax",       "Inc",        "Unit",
    "Representation", "pSelected",    "ChunkID",
};

// Parses the description and collects the names of its nodes.
class Description {
public:
  explicit Description(const std::string& aText) {
    const pugi::xml_parse_result parsed = mDocument.load_buffer(aText.data(), aText.size());
    EXPECT_TRUE(parsed) << parsed.description() << " at " << parsed.offset;
    for (const pugi::xml_node node : GetRoot().children())
      EXPECT_TRUE(mNames.insert(node.attribute("Name").value()).second)
          << "two nodes have the name " << node.attribute("Name").value();
  }
  pugi::xml_node GetRoot() const { return mDocument.child("RegisterDescription"); }
  pugi::xml_node Find(const char* aName) const { return GetRoot().find_child_by_attribute("Name", aName); }
  const std::set<std::string>& GetNames() const { return mNames; }

private:
  pugi::xml_document mDocument;
  std::set<std::string> mNames;
};

class DescriptionInRegistersTest : public LabTest {
protected:
  // Follows the first URL as an application does.
  std::string ReadDescription(KrDevice& aDevice) {
    std::array<char, 513> url = {};
    EXPECT_TRUE(aDevice.GetRegisterPort().Read(0x0200, url.data(), 512, kGenerousLimitMs).IsOK());
    std::array<char, 64> name = {};
    unsigned long long address = 0;
    unsigned long long length = 0;
    EXPECT_EQ(std::sscanf(url.data(), "Local:%63[^;];%llx;%llx", name.data(), &address, &length), 3) << url.data();
    EXPECT_THAT(std::string(name.data()), testing::EndsWith(".xml"));
    std::string text(length, '\0');
    EXPECT_TRUE(aDevice.GetRegisterPort().Read(address, text.data(), text.size(), kGenerousLimitMs).IsOK());
    return text;
  }
};

} // namespace

TEST(CameraDescription, Make_EveryCamera_IsWellFormedAndComplete) {
  for (const krtransport::LabGEVCamera& camera : ListLabCameras()) {
    SCOPED_TRACE(camera.serialNumber.CStr());

    const std::string text = krtransport::MakeCameraDescription(camera);

    const Description description(text);
    EXPECT_EQ(text.size() % 4, 0u);
    EXPECT_THAT(text, Not(HasSubstr("$")));
    for (const char* feature : kFeatures)
      EXPECT_EQ(description.GetNames().count(feature), 1u) << feature;
  }
}

TEST(CameraDescription, Make_EveryReference_LeadsToANode) {
  const Description description(krtransport::MakeCameraDescription(ListLabCameras().front()));
  int references = 0;

  for (const pugi::xml_node node : description.GetRoot().children()) {
    for (const pugi::xml_node child : node.children()) {
      const std::string name = child.name();
      if (name.size() < 2 || name[0] != 'p' || name[1] < 'A' || name[1] > 'Z')
        continue;
      ++references;
      EXPECT_EQ(description.GetNames().count(child.text().get()), 1u) << name << " " << child.text().get();
    }
  }

  EXPECT_GT(references, 120);
}

TEST(CameraDescription, Make_EveryNode_HasItsChildrenInTheSchemasOrder) {
  const Description description(krtransport::MakeCameraDescription(ListLabCameras().front()));

  for (const pugi::xml_node node : description.GetRoot().children()) {
    SCOPED_TRACE(node.attribute("Name").value());
    const auto* place = std::begin(kChildOrder);
    for (const pugi::xml_node child : node.children()) {
      const auto* const next = std::find_if(place, std::end(kChildOrder),
                                            [&](const char* aName) { return std::string(aName) == child.name(); });
      ASSERT_NE(next, std::end(kChildOrder)) << child.name() << " comes too late or is unknown";
      place = next;
    }
  }
}

TEST(CameraDescription, Make_Selectors_NameWhatTheySelect) {
  const Description description(krtransport::MakeCameraDescription(ListLabCameras().front()));
  std::vector<std::string> selected;

  for (const pugi::xml_node child : description.Find("TriggerSelector").children("pSelected"))
    selected.emplace_back(child.text().get());

  EXPECT_THAT(selected, testing::ElementsAre("TriggerMode", "TriggerSoftware", "TriggerSource", "TriggerActivation",
                                             "TriggerDelay"));
  for (const std::string& name : selected)
    EXPECT_STREQ(description.Find((name + "Reg").c_str()).child("pIndex").text().get(), "TriggerSelectorReg") << name;
  EXPECT_STREQ(description.Find("ChunkSelector").child("pSelected").text().get(), "ChunkEnable");
}

TEST(CameraDescription, Make_SizeFeatures_AreLockedWhileAStreamRuns) {
  const Description description(krtransport::MakeCameraDescription(ListLabCameras().front()));

  for (const char* feature : {"Width", "Height", "PixelFormat"})
    EXPECT_STREQ(description.Find(feature).child("pIsLocked").text().get(), "TLParamsLocked") << feature;
}

TEST(CameraDescription, Make_PixelFormats_AreTheCamerasOwn) {
  for (const krtransport::LabGEVCamera& camera : ListLabCameras()) {
    const Description description(krtransport::MakeCameraDescription(camera));
    std::vector<KrPixelType> formats;

    for (const pugi::xml_node entry : description.Find("PixelFormat").children("EnumEntry")) {
      formats.push_back(static_cast<KrPixelType>(std::stoul(entry.child("Value").text().get(), nullptr, 0)));
      EXPECT_EQ(KrFindPixelType(std::string_view(entry.attribute("Name").value())), formats.back());
    }

    EXPECT_EQ(formats, camera.pixelFormats);
  }
}

TEST_F(DescriptionInRegistersTest, FirstURL_Followed_GivesTheDescription) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());

  EXPECT_EQ(ReadDescription(*device), krtransport::MakeCameraDescription(ListLabCameras().front()));
}

TEST_F(DescriptionInRegistersTest, EveryAddress_Accessed_IsBackedByARegister) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  const Description description(ReadDescription(*device));
  // What can be unavailable is made available.
  ASSERT_TRUE(WriteInteger(*device, krtransport::cameraregister::kAcquisitionMode, 2).IsOK());
  ASSERT_TRUE(WriteInteger(*device, krtransport::cameraregister::kChunkModeActive, 1).IsOK());
  int registers = 0;

  for (const pugi::xml_node node : description.GetRoot().children()) {
    const pugi::xml_node addressNode = node.child("Address");
    if (!addressNode || std::string(node.child("pPort").text().get()) != "Device")
      continue;
    ++registers;
    SCOPED_TRACE(node.attribute("Name").value());
    const std::uint64_t address = std::stoull(addressNode.text().get(), nullptr, 0);
    std::vector<std::uint8_t> bytes(node.child("Length").text().as_uint());
    const std::string access = node.child("AccessMode").text().get();
    IKrRegisterPort& port = device->GetRegisterPort();
    const bool isReadable = port.Read(address, bytes.data(), bytes.size(), kGenerousLimitMs).IsOK();
    EXPECT_EQ(isReadable, access != "WO");
    // What was read is written back; a command takes its own value.
    const std::string name = node.attribute("Name").value();
    if (description.Find(name.substr(0, name.find("Reg")).c_str()).name() == std::string("Command"))
      bytes.back() = 1;
    const bool isWritable = port.Write(address, bytes.data(), bytes.size(), kGenerousLimitMs).IsOK();
    EXPECT_EQ(isWritable, access != "RO");
  }

  EXPECT_GE(registers, 40);
}
