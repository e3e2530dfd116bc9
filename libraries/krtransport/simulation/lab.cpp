#include "simulation/lab.h"

namespace krtransport {

namespace {

// What all cameras of the built-in lab have in common.
LabCamera MakeCamera(const KrString& aModelName, const KrString& aUserDefinedName, const KrString& aSerialNumber,
                     const KrString& aMAC, const KrString& aIPAddress) {
  LabCamera camera;
  camera.vendorName = "KrGUI";
  camera.modelName = aModelName;
  camera.version = "1.0";
  camera.manufacturerInfo = "Simulated by the application's host";
  camera.serialNumber = aSerialNumber;
  camera.userDefinedName = aUserDefinedName;
  camera.macAddress = aMAC;
  camera.ipAddress = aIPAddress;
  camera.subnetMask = "255.255.255.0";
  return camera;
}

LabCamera MakeMonoCamera() {
  LabCamera camera = MakeCamera("Simulated Mono Camera", "sim-mono", "SIM-0001", "02:4b:52:00:77:10", "192.168.77.10");
  camera.sensorWidth = 1280;
  camera.sensorHeight = 960;
  camera.framesPerSecond = 30.0;
  camera.pixelFormats = {KrPixel::Mono8, KrPixel::Mono10, KrPixel::Mono12, KrPixel::Mono12p, KrPixel::Mono16};
  return camera;
}

LabCamera MakeColourCamera() {
  LabCamera camera =
      MakeCamera("Simulated Colour Camera", "sim-colour", "SIM-0002", "02:4b:52:00:77:11", "192.168.77.11");
  camera.sensorWidth = 1920;
  camera.sensorHeight = 1200;
  camera.framesPerSecond = 60.0;
  camera.pixelFormats = {KrPixel::BayerRG8, KrPixel::Mono8, KrPixel::Mono16, KrPixel::RGB8, KrPixel::BGR8};
  return camera;
}

LabCamera MakeMisconfiguredCamera() {
  return MakeCamera("Simulated Mono Camera", "sim-foreign", "SIM-0003", "02:4b:52:00:77:12", "10.20.30.40");
}

} // namespace

Lab GetBuiltInLab() {
  LabAdapter adapter;
  adapter.name = "sim0";
  adapter.description = "Simulated network adapter";
  adapter.macAddress = "02:4b:52:00:77:01";
  adapter.ipAddress = "192.168.77.1";
  adapter.subnetMask = "255.255.255.0";
  adapter.cameras = {MakeMonoCamera(), MakeColourCamera(), MakeMisconfiguredCamera()};
  return {{adapter}};
}

} // namespace krtransport
