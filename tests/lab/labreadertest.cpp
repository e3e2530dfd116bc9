#include "badlabfiles.h"

#include "krpersistence/yamltext.h"
#include "simulation/builtinlabtext.h"
#include "simulation/labfile/labnumbering.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <set>
#include <tuple>

using krtransport::Lab;
using krtransport::LabGEVCamera;
using krtransport::LabPlainUSBDevice;
using krtransport::LabTolvanDevice;
using krtransport::LabU3VCamera;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr std::uint64_t kSecondNs = 1000000000;

// The whole of what a file may say, each value other than the default.
constexpr const char* kWholeLab = R"(
host: {receiveBufferLimit: 212992, usbMemory: 16}
adapters:
  - name: eth7
    description: "An <b>adapter</b>"
    mac: 02:AA:BB:CC:DD:EE
    addresses:
      - {address: 10.1.2.3, mask: 255.255.0.0}
      - {address: 192.168.1.1, mask: 255.255.255.252}
    gateway: 10.1.0.1
    driver: true
    up: false
    carrier: false
    reversePathFilter: loose
    usedAddresses: [10.1.2.4, 10.1.2.5]
    appears: 1
    vanishes: 9.5
    goesDown: 3
    comesUp: 4
    every: 10
    devices:
      - kind: gigeVision
        vendor: V
        model: M
        version: "1"
        info: I
        serial: S
        name: "\U0001F4F7\a<i>"
        mac: 02:00:00:00:00:01
        address: 10.1.2.9
        mask: 255.255.0.0
        gateway: 10.1.0.1
        addressing: [dhcp, linkLocal]
        addressingNow: [dhcp]
        persistent: {address: 10.1.2.8, mask: 255.0.0.0, gateway: 10.1.0.2}
        returnsAt: 10.1.2.9
        class: peripheral
        protocolVersion: "2.1"
        control: exclusive
        sensor: {width: 64, height: 16, frameRate: 2.5, pixelFormats: [Mono12p, RGB8]}
        faults:
          refusesOpening: true
          losesPower: true
          silent: true
          silentRegisters: [{address: 0x10, times: 2}]
          registerDelay: 5
          droppedFrames: 6
          lostPackets: {frames: 7, packets: 8, first: 9}
        vanishes: 5
        awayWhile: /run/away
      - kind: tolvan
        mac: 02:00:00:00:00:02
        deviceID: 0x12
        moduleID: 3
        subID: 4
        vendorID: 5
        softwareVersion: "6.7"
controllers:
  - name: usb7
    description: C
    vendorID: 0xFFFF
    deviceID: 2
    subsystemID: 0xFFFFFFFF
    revision: 4
    speed: high
    devices:
      - kind: usb3Vision
        guid: G
        family: F
        genCPVersion: "1.2"
        u3vVersion: "1.3"
        speed: full
        supportedSpeeds: [low, full]
        maxPower: 500
        power: "too little"
        capabilities: false
        configured: false
        driver: false
      - {kind: usb, id: U, status: reset}
)";

// What a device on an adapter is written behind, its lines 4 and following.
#define KR_DEVICE "adapters:\n- name: a\n  devices:\n  - kind: gigeVision\n"

const BadLabFile kBadRows[] = {
    {"nothing", "", "1:1", "a lab has to be keys with values"},
    {"no YAML", "adapters: [1, 2", "1:", "end of"},
    {"list at the top", "- 1\n", "1:1", "a lab has to be"},
    {"unknown key at the top", "host: {}\nadaptors: []\n", "2:1", "is \"adapters\" meant?"},
    {"unknown key of a device", KR_DEVICE "    mac: 02:00:00:00:00:01\n    adress: 1.2.3.4\n", "6:5",
     "no key \"adress\"; is \"address\" meant?"},
    {"unknown key of a sensor", KR_DEVICE "    mac: 02:00:00:00:00:01\n    sensor: {widht: 64}\n", "6:14",
     "is \"width\" meant?"},
    {"key twice", "host: {}\nhost: {}\n", "2:1", "there twice"},
    {"adapter without name", "adapters:\n- mac: 02:00:00:00:00:01\n", "2:3", "needs the key \"name\""},
    {"empty name", "adapters:\n- name: \"\"\n", "2:9", "must not be empty"},
    {"device without MAC", KR_DEVICE, "4:5", "needs the key \"mac\""},
    {"device without kind", "adapters:\n- name: a\n  devices:\n  - mac: 02:00:00:00:00:01\n", "4:5",
     "needs the key \"kind\""},
    {"kind of the other list", "adapters:\n- name: a\n  devices:\n  - kind: usb\n", "4:11", "gigeVision, tolvan"},
    {"text for a number", "host: {usbMemory: much}\n", "1:19", "whole number from 0 to"},
    {"negative number", "host: {usbMemory: -1}\n", "1:19", "whole number from 0 to"},
    {"number out of range", "controllers:\n- name: a\n  vendorID: 65536\n", "3:13", "to 65535, not \"65536\""},
    {"list for a text", "adapters:\n- name: [a]\n", "2:9", "has to be one value"},
    {"text for a list", "adapters: all\n", "1:11", "has to be a list"},
    {"word for a flag", "adapters:\n- {name: a, up: yes}\n", "2:17", "true or false, not \"yes\""},
    {"bad address", KR_DEVICE "    mac: 02:00:00:00:00:01\n    address: 1.2.3.256\n", "6:14", "not \"1.2.3.256\""},
    {"mask with a hole", KR_DEVICE "    mac: 02:00:00:00:00:01\n    mask: 255.0.255.0\n", "6:11",
     "ones and then zeros"},
    {"bad MAC", KR_DEVICE "    mac: 02-00-00-00-00-01\n", "5:10", "as in 00:11:22:aa:bb:cc"},
    {"MAC of two devices", KR_DEVICE "    mac: 02:00:00:00:00:0a\n  - kind: tolvan\n    mac: 02:00:00:00:00:0A\n",
     "6:5", "02:00:00:00:00:0a is another's too"},
    {"GUID of two devices",
     "controllers:\n- name: a\n  devices:\n  - {kind: usb3Vision, guid: g}\n  - {kind: usb, id: g}\n", "5:5",
     "g is another's too"},
    {"name of two interfaces", "adapters: [{name: a}]\ncontrollers: [{name: a}]\n", "2:22", "the name a"},
    {"text too long", KR_DEVICE "    mac: 02:00:00:00:00:01\n    serial: \"12345678901234567\"\n", "6:13",
     "more than 16 bytes"},
    {"texts that grow too long", KR_DEVICE "    mac: 02:00:00:00:00:01\n    name: aaaaaaaaaaaaaaa9\n    count: 2\n",
     "4:5", "grows too long"},
    {"addresses that end", KR_DEVICE "    mac: ff:ff:ff:ff:ff:ff\n    count: 2\n", "4:5", "an address ends"},
    {"too many devices of one entry", KR_DEVICE "    mac: 02:00:00:00:00:01\n    count: 4097\n", "6:12",
     "from 1 to 4096"},
    {"too many devices of two entries",
     KR_DEVICE "    mac: 02:00:00:00:00:01\n    count: 4096\n  - {kind: tolvan, mac: 03:00:00:00:00:01}\n", "7:5",
     "more than 4096 devices"},
    {"unknown pixel format", KR_DEVICE "    mac: 02:00:00:00:00:01\n    sensor: {pixelFormats: [Mono9]}\n", "6:29",
     "as Mono8"},
    {"pixel format twice", KR_DEVICE "    mac: 02:00:00:00:00:01\n    sensor: {pixelFormats: [Mono8, Mono8]}\n", "6:36",
     "twice"},
    {"odd sensor", KR_DEVICE "    mac: 02:00:00:00:00:01\n    sensor: {width: 66}\n", "6:13", "multiple of 4"},
    {"schedule of no length", KR_DEVICE "    mac: 02:00:00:00:00:01\n    appears: 2\n    vanishes: 2\n", "6:14",
     "have to differ"},
    {"schedule of hardly any length", KR_DEVICE "    mac: 02:00:00:00:00:01\n    appears: 2\n    vanishes: 2.009\n",
     "6:14", "differ, by 0.01 s at least"},
    {"period of hardly any length", KR_DEVICE "    mac: 02:00:00:00:00:01\n    appears: 0\n    every: 2e-9\n", "7:12",
     "\"every\" has to be 0.01 s"},
    {"period of no length", KR_DEVICE "    mac: 02:00:00:00:00:01\n    appears: 0\n    every: 0\n", "7:12",
     "\"every\" has to be 0.01 s"},
    {"period of nothing", KR_DEVICE "    mac: 02:00:00:00:00:01\n    every: 5\n", "6:12",
     "it goes with \"appears\" or \"vanishes\""},
    {"period of no adapter's times", "adapters:\n- name: a\n  every: 5\n", "3:10", "\"goesDown\" or \"comesUp\""},
    {"period of no controller's times", "controllers:\n- name: a\n  every: 5\n", "3:10", "it goes with \"appears\""},
    {"schedule beyond its period", KR_DEVICE "    mac: 02:00:00:00:00:01\n    appears: 2\n    every: 1\n", "6:14",
     "within the period"},
    {"time that is no number", KR_DEVICE "    mac: 02:00:00:00:00:01\n    appears: nan\n", "6:14", "number from 0 to"},
    {"endless time", KR_DEVICE "    mac: 02:00:00:00:00:01\n    appears: 1e300\n", "6:14", "number from 0 to"},
    {"bytes that are no text", "adapters: []\n# \xFF\n", "2:3", "no UTF-8"},
    {"half a surrogate", "adapters: [{name: \"\xED\xA0\x80\"}]\n", "1:20", "no UTF-8"},
    {"zero in a name", "adapters: [{name: \"a\\0\"}]\n", "1:19", "zero"},
    {"alias in itself", "adapters: &a [*a]\n", "1:15", "alias"},
    {"alias of nothing", "adapters: *a\n", "1:11", "anchor is not defined"},
    {"second document", "adapters: []\n---\nadapters: []\n", "", "second document"},
    {"key that is a list", "? [a]\n: b\n", "1:3", "key has to be a word"},
    {"deep nesting", "adapters: [[[[[[[[[[[[[[[[[[[[]]]]]]]]]]]]]]]]]]]]\n", "1:26", "nested more than 16 deep"},
};

class LabReaderRefusals : public BadLabFiles {};

class LabFileTest : public testing::Test {
protected:
  KrString Write(const std::string& aText) {
    const std::string file = mFolder.GetFile("lab.yaml");
    TemporaryFolder::WriteFile(file, aText);
    return file;
  }

  const TemporaryFolder mFolder;
};

} // namespace

TEST_P(LabReaderRefusals, Parse_BadFile_SaysWhereAndWhy) {
  ExpectPlaceAndReason();
}

INSTANTIATE_TEST_SUITE_P(Files, LabReaderRefusals, testing::ValuesIn(kBadRows));

TEST(LabReader, Parse_WholeLab_TakesAdapters) {
  Lab lab;

  const KrResult result = Parse(kWholeLab, lab);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(lab.receiveBufferLimitBytes, 212992u);
  EXPECT_EQ(lab.usbMemoryMegabytes, 16u);
  ASSERT_EQ(lab.adapters.size(), 1u);
  const krtransport::LabAdapter& adapter = lab.adapters[0];
  EXPECT_EQ(adapter.name, "eth7");
  EXPECT_EQ(adapter.description, "An <b>adapter</b>");
  EXPECT_EQ(adapter.macAddress, "02:aa:bb:cc:dd:ee");
  ASSERT_EQ(adapter.addresses.size(), 2u);
  EXPECT_EQ(adapter.addresses[1].mask, "255.255.255.252");
  EXPECT_EQ(adapter.defaultGateway, "10.1.0.1");
  EXPECT_TRUE(adapter.isDriverInstalled);
  EXPECT_FALSE(adapter.isUp);
  EXPECT_FALSE(adapter.hasCarrier);
  EXPECT_EQ(adapter.reversePathFilter, 2);
  EXPECT_THAT(adapter.usedAddresses, ElementsAre("10.1.2.4", "10.1.2.5"));
  EXPECT_EQ(adapter.schedule, (krtransport::LabSchedule{kSecondNs, 9500000000, 10 * kSecondNs}));
  EXPECT_EQ(adapter.downSchedule, (krtransport::LabSchedule{3 * kSecondNs, 4 * kSecondNs, 10 * kSecondNs}));
}

TEST(LabReader, Parse_WholeLab_TakesNetworkDevices) {
  Lab lab;
  ASSERT_TRUE(Parse(kWholeLab, lab).IsOK());
  ASSERT_EQ(lab.adapters[0].devices.size(), 2u);

  const auto camera = std::get<LabGEVCamera>(lab.adapters[0].devices[0]);
  const auto tolvan = std::get<LabTolvanDevice>(lab.adapters[0].devices[1]);

  EXPECT_EQ(camera.userDefinedName, "\U0001F4F7\a<i>");
  EXPECT_EQ(camera.manufacturerInfo, "I");
  EXPECT_EQ(camera.ipAddress, "10.1.2.9");
  EXPECT_EQ(camera.ipConfigOptions, 6u);
  EXPECT_EQ(camera.ipConfigCurrent, 2u);
  EXPECT_EQ(camera.persistentMask, "255.0.0.0");
  EXPECT_EQ(camera.returnAddress, "10.1.2.9");
  EXPECT_EQ(camera.deviceClass, 3u);
  EXPECT_EQ(camera.gevVersion, 0x00020001u);
  EXPECT_EQ(camera.foreignControl, krsystem::AccessType::Exclusive);
  EXPECT_EQ(camera.sensorWidth, 64u);
  EXPECT_EQ(camera.framesPerSecond, 2.5);
  EXPECT_THAT(camera.pixelFormats, ElementsAre(KrPixel::Mono12p, KrPixel::RGB8));
  EXPECT_TRUE(camera.faults.refusesOpening);
  EXPECT_TRUE(camera.faults.losesPower);
  EXPECT_TRUE(camera.faults.isSilent);
  ASSERT_EQ(camera.faults.silentRegisters.size(), 1u);
  EXPECT_EQ(camera.faults.silentRegisters[0].address, 0x10u);
  EXPECT_EQ(camera.faults.lostPackets->firstPacket, 9u);
  EXPECT_EQ(camera.schedule, (krtransport::LabSchedule{.endNs = 5 * kSecondNs}));
  EXPECT_EQ(camera.awayFile, "/run/away");
  EXPECT_EQ(tolvan.deviceID, 0x12);
  EXPECT_EQ(tolvan.softwareMajor, 6);
  EXPECT_EQ(tolvan.softwareMinor, 7);
}

TEST(LabReader, Parse_WholeLab_TakesUSBDevices) {
  Lab lab;
  ASSERT_TRUE(Parse(kWholeLab, lab).IsOK());
  ASSERT_EQ(lab.controllers.size(), 1u);
  ASSERT_EQ(lab.controllers[0].devices.size(), 2u);

  const auto camera = std::get<LabU3VCamera>(lab.controllers[0].devices[0]);
  const auto plain = std::get<LabPlainUSBDevice>(lab.controllers[0].devices[1]);

  EXPECT_EQ(lab.controllers[0].subsystemID, 0xFFFFFFFFu);
  EXPECT_EQ(lab.controllers[0].speed, 3);
  EXPECT_EQ(camera.deviceGUID, "G");
  EXPECT_EQ(camera.u3vVersion, 0x00010003u);
  EXPECT_EQ(camera.speed, 2);
  EXPECT_THAT(camera.supportedSpeeds, ElementsAre(1, 2));
  EXPECT_EQ(camera.maxPowerMilliampere, 500u);
  EXPECT_EQ(camera.powerMessage, "too little");
  EXPECT_FALSE(camera.hasInitializedCapabilities);
  EXPECT_FALSE(camera.isConfigurationValid);
  EXPECT_FALSE(camera.isDriverInstalled);
  EXPECT_EQ(plain.status, 9);
}

TEST(LabReader, Parse_Count_CountsUpWhatHasToDiffer) {
  Lab lab;
  ASSERT_TRUE(Parse("adapters:\n- name: a\n  devices:\n"
                    "  - {kind: gigeVision, mac: \"02:00:00:00:00:fe\", address: 10.0.0.254, serial: SN-09, name: cam,"
                    " count: 1000}\n",
                    lab)
                  .IsOK());
  std::set<KrString> macs;
  for (const krtransport::LabNetworkDevice& device : lab.adapters[0].devices)
    macs.insert(std::get<LabGEVCamera>(device).macAddress);

  const auto third = std::get<LabGEVCamera>(lab.adapters[0].devices[2]);

  EXPECT_EQ(macs.size(), 1000u);
  EXPECT_EQ(third.macAddress, "02:00:00:00:01:00");
  EXPECT_EQ(third.ipAddress, "10.0.1.0");
  EXPECT_EQ(third.serialNumber, "SN-11");
  EXPECT_EQ(third.userDefinedName, "cam3");
}

TEST(LabReader, Parse_Duplicate_MayHaveTheSameMAC) {
  Lab lab;

  EXPECT_TRUE(Parse("adapters:\n- name: a\n  devices:\n"
                    "  - {kind: gigeVision, mac: \"02:00:00:00:00:01\"}\n"
                    "  - {kind: gigeVision, mac: \"02:00:00:00:00:01\", duplicate: true}\n",
                    lab)
                  .IsOK());

  EXPECT_EQ(lab.adapters[0].devices.size(), 2u);
}

TEST(LabReader, Parse_SilentControl_IsASilentRegister) {
  Lab lab;
  ASSERT_TRUE(
      Parse("adapters: [{name: a, devices: [{kind: gigeVision, mac: \"02:00:00:00:00:01\", control: silent}]}]", lab)
          .IsOK());

  const auto camera = std::get<LabGEVCamera>(lab.adapters[0].devices[0]);

  ASSERT_EQ(camera.faults.silentRegisters.size(), 1u);
  EXPECT_EQ(camera.faults.silentRegisters[0].address, 0x0A00u);
}

TEST(LabReader, Parse_Alias_StandsForItsValue) {
  Lab lab;
  ASSERT_TRUE(Parse("adapters:\n- {name: a, addresses: &here [{address: 10.0.0.1, mask: 255.0.0.0}]}\n"
                    "- {name: b, addresses: *here}\n",
                    lab)
                  .IsOK());

  EXPECT_EQ(lab.adapters[1].addresses, lab.adapters[0].addresses);
}

TEST(LabReader, Parse_AliasesOfAliases_AreRefusedBeforeTheyFillTheMemory) {
  std::string text = "a0: &a0 [x, x, x, x, x, x, x, x, x, x]\n";
  for (int i = 1; i < 10; ++i) {
    const std::string former = "*a" + std::to_string(i - 1);
    text += "a" + std::to_string(i) + ": &a" + std::to_string(i) + " [" + former;
    for (int item = 1; item < 10; ++item)
      text += ", " + former;
    text += "]\n";
  }

  EXPECT_THAT(GetProblem(text), HasSubstr("more than 100000 values, those of anchors and aliases included"));
}

TEST(LabReader, Parse_AnchorsWithinAnchors_AreCountedWithTheirCopies) {
  std::string text = "a: ";
  for (int depth = 0; depth < 10; ++depth)
    text += "&a" + std::to_string(depth) + " [";
  for (int i = 0; i < 10000; ++i)
    text += "x, ";
  text += "x]]]]]]]]]]\n";

  EXPECT_THAT(GetProblem(text), HasSubstr("more than 100000 values, those of anchors"));
}

TEST(LabReader, Parse_NameOfTwoInterfaces_AdvisesNothingThatCannotBe) {
  EXPECT_THAT(GetProblem("adapters: [{name: a}, {name: a}]\n"), testing::Not(HasSubstr("duplicate")));
}

TEST(LabReader, Parse_AdapterThatGoesDownInEachPeriod_IsTaken) {
  Lab lab;

  ASSERT_TRUE(Parse("adapters: [{name: a, goesDown: 1, comesUp: 1.01, every: 2}]\n", lab).IsOK());

  EXPECT_EQ(lab.adapters[0].downSchedule, (krtransport::LabSchedule{kSecondNs, 1010000000, 2 * kSecondNs}));
  EXPECT_EQ(lab.adapters[0].schedule, krtransport::LabSchedule());
}

TEST(LabReader, Parse_FileThatIsTooLarge_IsRefused) {
  EXPECT_THAT(GetProblem(std::string(krpersistence::kMostYamlBytes + 1, '#')), HasSubstr("more than 1048576 bytes"));
}

TEST(LabReader, BuiltInLab_IsAGoodLabFile) {
  Lab lab;

  const KrResult result = krtransport::ParseLab(krtransport::kBuiltInLabText, "builtinlab.yaml", lab);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(lab.adapters.size(), 3u);
  EXPECT_EQ(lab.controllers.size(), 1u);
}

TEST(LabReader, CountUp_EachText_CountsItsLastDigits) {
  EXPECT_EQ(krtransport::CountUp("", 5), "");
  EXPECT_EQ(krtransport::CountUp("cam", 0), "cam1");
  EXPECT_EQ(krtransport::CountUp("cam-007", 3), "cam-010");
  EXPECT_EQ(krtransport::CountUp("99", 1), "100");
  EXPECT_EQ(krtransport::CountUp("A1-x", 9), "A10-x");
  EXPECT_EQ(krtransport::CountUp("00000000000000000000099", 1), "00000000000000000000100");
}

TEST_F(LabFileTest, Read_GoodFile_GivesItsLab) {
  Lab lab;

  EXPECT_TRUE(krtransport::ReadLab(Write(kWholeLab), lab).IsOK());

  EXPECT_EQ(lab.adapters.size(), 1u);
}

TEST_F(LabFileTest, Read_BadFile_NamesIt) {
  Lab lab;

  const KrResult result = krtransport::ReadLab(Write("adapters: 1\n"), lab);

  EXPECT_TRUE(result == KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("lab.yaml:1:11: "));
}

TEST_F(LabFileTest, Read_WhatCannotBeRead_SaysWhichFileAndWhy) {
  const std::string longFile = Write(std::string(krpersistence::kMostYamlBytes + 1, '\n')).ToUtf8();
  const std::vector<std::tuple<std::string, KrResult::Code, std::string>> rows = {
      {mFolder.GetFile("none"), KrResult::Code::NotFound, "No such file"},
      {mFolder.GetPath().string(), KrResult::Code::InvalidInput, "it is no file"},
      {"/dev/zero", KrResult::Code::InvalidInput, "it is no file"},
      {longFile, KrResult::Code::BadData, "longer than the limit of 1048576 bytes"}};

  for (const auto& [file, code, reason] : rows) {
    Lab lab;
    const KrResult result = krtransport::ReadLab(file, lab);
    EXPECT_EQ(result.GetCode(), code) << file;
    EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(HasSubstr(file), HasSubstr(reason)));
  }
}
