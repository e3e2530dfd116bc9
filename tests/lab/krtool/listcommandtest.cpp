#include "listcommand.h"

#include "krdevice/krdevice.h"
#include "labfixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace krtool {
namespace {

// The parts between separators; more of the separator's last character belong to it. A last empty part is left out.
std::vector<std::string> Split(const std::string& aText, const std::string& aSeparator) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < aText.size();) {
    const std::size_t end = std::min(aText.find(aSeparator, start), aText.size());
    parts.push_back(aText.substr(start, end - start));
    start = std::min(aText.find_first_not_of(aSeparator.back(), end), aText.size());
  }
  return parts;
}

QJsonObject ReadObject(const std::string& aText) {
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(aText), &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString() << "\n" << aText;
  return document.object();
}

class ListCommand : public LabTest {
protected:
  int Run(bool aJson) { return RunList(mSystem, {.verb = Verb::List, .json = aJson}, mOut, mErrors); }

  std::ostringstream mOut;
  std::ostringstream mErrors;
};

krtransport::Lab MakeLabWithoutDevices() {
  krtransport::LabAdapter adapter;
  adapter.name = "sim0";
  adapter.macAddress = "02:4b:52:00:00:01";
  krtransport::LabController controller;
  controller.name = "usb0";
  controller.description = "Controller";
  return {.adapters = {adapter}, .controllers = {controller}};
}

class ListCommandWithoutDevices : public LabTest {
protected:
  ListCommandWithoutDevices() : LabTest(MakeLabWithoutDevices()) {}
};

TEST_F(ListCommand, Lab_GivesHeadingsAndOneLineForEachInterfaceAndDevice) {
  const int exitCode = Run(false);

  EXPECT_EQ(exitCode, 0);
  const std::vector<std::string> lines = Split(mOut.str(), "\n");
  ASSERT_EQ(lines.size(), 1U + 4U + 12U) << mOut.str();
  for (const std::string& line : lines)
    EXPECT_EQ(Split(line, "  ").size(), 11U) << line;
  EXPECT_THAT(Split(lines[0], "  "),
              testing::ElementsAre("entry", "kind", "unique ID", "IP address", "MAC address", "adapter", "name",
                                   "serial number", "user-defined name", "control", "state"));
  EXPECT_EQ(Split(lines[1], "  ")[0], "interface");
  EXPECT_THAT(Split(lines[2], "  "),
              testing::ElementsAre("device", "GEV", "02:4b:52:00:77:10", "192.168.77.10", "02:4b:52:00:77:10", "sim0",
                                   "KrGUI Simulated Mono Camera", "SIM-0001", "sim-mono", "Open", "reachable"));
  EXPECT_EQ(Split(lines[4], "  ")[9], "-");
  EXPECT_EQ(Split(lines[4], "  ").back(), "unreachable");
  EXPECT_EQ(mErrors.str(), "");
}

TEST_F(ListCommand, LabAsJson_HoldsTheSameDevices) {
  const int exitCode = Run(true);

  const QJsonObject object = ReadObject(mOut.str());
  EXPECT_EQ(exitCode, 0);
  ASSERT_EQ(object["interfaces"].toArray().size(), 4);
  ASSERT_EQ(object["devices"].toArray().size(), 12);
  const QJsonObject interface = object["interfaces"].toArray()[0].toObject();
  const QJsonObject camera = object["devices"].toArray()[0].toObject();
  EXPECT_EQ(interface["deviceCount"].toInt(), 4);
  EXPECT_EQ(camera["interface"], interface["uniqueID"]);
  EXPECT_EQ(camera["userDefinedName"].toString(), "sim-mono");
  EXPECT_TRUE(camera["reachable"].toBool());
  EXPECT_FALSE(object["devices"].toArray()[2].toObject()["reachable"].toBool());
}

TEST_F(ListCommand, CameraThatAnApplicationControls_IsListedAsSuch) {
  ASSERT_TRUE(mSystem.Find().IsOK());
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(KrDevice::Open(*mSystem.GetDeviceInfo(0), KrDeviceAccess::Control, device).IsOK());

  Run(true);

  const QJsonObject camera = ReadObject(mOut.str())["devices"].toArray()[0].toObject();
  EXPECT_EQ(camera["access"].toString(), "Control");
  EXPECT_EQ(camera["adapter"].toString(), "sim0");
}

TEST_F(ListCommand, UnreachableCameraAsJson_HasItsAddressesAndNobodyWasAsked) {
  Run(true);

  const QJsonObject camera = ReadObject(mOut.str())["devices"].toArray()[2].toObject();
  EXPECT_EQ(camera["ipAddress"].toString(), "10.20.30.40");
  EXPECT_FALSE(camera["subnetMask"].toString().isEmpty());
  EXPECT_EQ(camera["ipConfigurationOffered"].toString(), "Persistent, DHCP, LLA");
  EXPECT_FALSE(camera.contains("access"));
}

TEST_F(ListCommand, TimeoutOption_IsTheDetectionTimeout) {
  const int exitCode = RunList(mSystem, {.verb = Verb::List, .timeoutMs = 37}, mOut, mErrors);

  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(mSystem.GetDetectionTimeout(), 37U);
}

TEST_F(ListCommand, NothingFound_IsSaid) {
  krsystem::UnregisterTransport(mLab);

  const int exitCode = Run(false);

  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(mOut.str(), "No devices found. There is no interface to ask.\n"
                        "Why one may be missing: krtool list --diagnose\n"
                        "Simulated ones to try:  krtool list --simulate\n");
}

TEST_F(ListCommandWithoutDevices, List_NamesTheInterfacesThatWereAskedAndWhatToDo) {
  std::ostringstream out;
  std::ostringstream errors;

  const int exitCode = RunList(mSystem, {.verb = Verb::List, .simulate = true}, out, errors);

  EXPECT_EQ(exitCode, 0);
  EXPECT_THAT(out.str(), testing::EndsWith("\nNo devices found. Asked were: sim0, Controller (usb0).\n"
                                           "Why one may be missing: krtool list --diagnose\n"));
}

TEST_F(ListCommand, NothingFoundAsJson_IsEmptyLists) {
  krsystem::UnregisterTransport(mLab);

  Run(true);

  const QJsonObject object = ReadObject(mOut.str());
  EXPECT_TRUE(object["interfaces"].isArray());
  EXPECT_TRUE(object["devices"].isArray());
  EXPECT_EQ(object["interfaces"].toArray().size() + object["devices"].toArray().size(), 0);
}

} // namespace
} // namespace krtool
