#include "simulation/lab.h"

#include <array>

namespace krtransport {

namespace {

// The first format of each camera is the one at the start.
constexpr std::array kGreyFormats = {
    KrPixel::Mono8,
    KrPixel::Mono10,
    KrPixel::Mono12,
    KrPixel::Mono12p,
    KrPixel::Mono16,
    KrPixel::Mono1p,
    KrPixel::Mono2p,
    KrPixel::Mono4p,
    KrPixel::Mono8s,
    KrPixel::Mono14,
    KrPixel::Mono10p,
    KrPixel::Mono14p,
    KrPixel::Mono10Packed,
    KrPixel::Mono12Packed,
    // One colour alone.
    KrPixel::R8,
    KrPixel::R10,
    KrPixel::R12,
    KrPixel::R16,
    KrPixel::G8,
    KrPixel::G10,
    KrPixel::G12,
    KrPixel::G16,
    KrPixel::B8,
    KrPixel::B10,
    KrPixel::B12,
    KrPixel::B16,
};

constexpr std::array kColourFormats = {
    KrPixel::BayerRG8,
    KrPixel::Mono8,
    KrPixel::Mono16,
    KrPixel::RGB8,
    KrPixel::BGR8,
    // The other formats of a colour filter array.
    KrPixel::BayerGR8,
    KrPixel::BayerGB8,
    KrPixel::BayerBG8,
    KrPixel::BayerGR10,
    KrPixel::BayerRG10,
    KrPixel::BayerGB10,
    KrPixel::BayerBG10,
    KrPixel::BayerGR12,
    KrPixel::BayerRG12,
    KrPixel::BayerGB12,
    KrPixel::BayerBG12,
    KrPixel::BayerGR14,
    KrPixel::BayerRG14,
    KrPixel::BayerGB14,
    KrPixel::BayerBG14,
    KrPixel::BayerGR16,
    KrPixel::BayerRG16,
    KrPixel::BayerGB16,
    KrPixel::BayerBG16,
    KrPixel::BayerGR4p,
    KrPixel::BayerRG4p,
    KrPixel::BayerGB4p,
    KrPixel::BayerBG4p,
    KrPixel::BayerGR10p,
    KrPixel::BayerRG10p,
    KrPixel::BayerGB10p,
    KrPixel::BayerBG10p,
    KrPixel::BayerGR12p,
    KrPixel::BayerRG12p,
    KrPixel::BayerGB12p,
    KrPixel::BayerBG12p,
    KrPixel::BayerGR14p,
    KrPixel::BayerRG14p,
    KrPixel::BayerGB14p,
    KrPixel::BayerBG14p,
    KrPixel::BayerGR10Packed,
    KrPixel::BayerRG10Packed,
    KrPixel::BayerGB10Packed,
    KrPixel::BayerBG10Packed,
    KrPixel::BayerGR12Packed,
    KrPixel::BayerRG12Packed,
    KrPixel::BayerGB12Packed,
    KrPixel::BayerBG12Packed,
    // Colours.
    KrPixel::RGBa8,
    KrPixel::BGRa8,
    KrPixel::RGB10,
    KrPixel::BGR10,
    KrPixel::RGB12,
    KrPixel::BGR12,
    KrPixel::RGB14,
    KrPixel::BGR14,
    KrPixel::RGB16,
    KrPixel::BGR16,
    KrPixel::RGB10p,
    KrPixel::BGR10p,
    KrPixel::RGB12p,
    KrPixel::BGR12p,
    KrPixel::RGB8_Planar,
    KrPixel::RGB10_Planar,
    KrPixel::RGB12_Planar,
    KrPixel::RGB16_Planar,
    KrPixel::RGB565p,
    KrPixel::BGR565p,
    // Luma and chroma.
    KrPixel::YUV411_8_UYYVYY,
    KrPixel::YUV422_8_UYVY,
    KrPixel::YUV422_8,
    KrPixel::YUV8_UYV,
    KrPixel::YCbCr411_8,
    KrPixel::YCbCr411_8_CbYYCrYY,
    KrPixel::YCbCr601_411_8_CbYYCrYY,
    KrPixel::YCbCr709_411_8_CbYYCrYY,
    KrPixel::YCbCr422_8,
    KrPixel::YCbCr601_422_8,
    KrPixel::YCbCr709_422_8,
    KrPixel::YCbCr422_8_CbYCrY,
    KrPixel::YCbCr601_422_8_CbYCrY,
    KrPixel::YCbCr709_422_8_CbYCrY,
    KrPixel::YCbCr8,
    KrPixel::YCbCr8_CbYCr,
    KrPixel::YCbCr601_8_CbYCr,
    KrPixel::YCbCr709_8_CbYCr,
};

constexpr std::array kRangeFormats = {
    KrPixel::Coord3D_C16, KrPixel::Coord3D_C8,   KrPixel::Coord3D_C10p, KrPixel::Coord3D_C12p, KrPixel::Coord3D_C32f,
    KrPixel::Coord3D_A8,  KrPixel::Coord3D_A10p, KrPixel::Coord3D_A12p, KrPixel::Coord3D_A16,  KrPixel::Coord3D_A32f,
    KrPixel::Coord3D_B8,  KrPixel::Coord3D_B10p, KrPixel::Coord3D_B12p, KrPixel::Coord3D_B16,  KrPixel::Coord3D_B32f,
    KrPixel::Confidence1, KrPixel::Confidence1p, KrPixel::Confidence8,  KrPixel::Confidence16, KrPixel::Confidence32f,
    KrPixel::Data8,       KrPixel::Data8s,       KrPixel::Data16,       KrPixel::Data16s,      KrPixel::Data32f,
};

// What all cameras of the built-in lab have in common.
LabGEVCamera MakeCamera(const KrString& aModelName, const KrString& aUserDefinedName, const KrString& aSerialNumber,
                        const KrString& aMAC, const KrString& aIPAddress) {
  LabGEVCamera camera;
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

LabGEVCamera MakeMonoCamera() {
  LabGEVCamera camera =
      MakeCamera("Simulated Mono Camera", "sim-mono", "SIM-0001", "02:4b:52:00:77:10", "192.168.77.10");
  camera.sensorWidth = 1280;
  camera.sensorHeight = 960;
  camera.framesPerSecond = 30.0;
  camera.pixelFormats.assign(kGreyFormats.begin(), kGreyFormats.end());
  return camera;
}

LabGEVCamera MakeColourCamera() {
  LabGEVCamera camera =
      MakeCamera("Simulated Colour Camera", "sim-colour", "SIM-0002", "02:4b:52:00:77:11", "192.168.77.11");
  camera.sensorWidth = 1920;
  camera.sensorHeight = 1200;
  camera.framesPerSecond = 60.0;
  camera.pixelFormats.assign(kColourFormats.begin(), kColourFormats.end());
  return camera;
}

LabGEVCamera MakeMisconfiguredCamera() {
  return MakeCamera("Simulated Mono Camera", "sim-foreign", "SIM-0003", "02:4b:52:00:77:12", "10.20.30.40");
}

LabGEVCamera MakeRangeCamera() {
  LabGEVCamera camera = MakeCamera("Simulated 3D Camera", "sim-3d", "SIM-0004", "02:4b:52:00:77:13", "192.168.77.12");
  camera.pixelFormats.assign(kRangeFormats.begin(), kRangeFormats.end());
  return camera;
}

LabGEVCamera MakeBusyCamera() {
  LabGEVCamera camera =
      MakeCamera("Simulated Mono Camera", "sim-busy", "SIM-0005", "02:4b:52:00:78:10", "192.168.78.10");
  camera.foreignControl = krsystem::AccessType::Control;
  return camera;
}

LabGEVCamera MakeCameraWithoutAddress() {
  LabGEVCamera camera = MakeCamera("Simulated Mono Camera", "sim-zero", "SIM-0006", "02:4b:52:00:78:11", "0.0.0.0");
  camera.subnetMask = "0.0.0.0";
  return camera;
}

LabTolvanDevice MakeTolvanDevice() {
  LabTolvanDevice device;
  device.modelName = "Simulated Tolvan Device";
  device.macAddress = "02:4b:52:00:78:20";
  device.ipAddress = "192.168.78.20";
  device.subnetMask = "255.255.255.0";
  return device;
}

LabU3VCamera MakeUSBCamera(const KrString& aUserDefinedName, const KrString& aNumber, std::int32_t aSpeed) {
  LabU3VCamera camera;
  camera.vendorName = "KrGUI";
  camera.modelName = "Simulated USB3 Camera";
  camera.version = "1.0";
  camera.serialNumber = "SIM-" + aNumber;
  camera.userDefinedName = aUserDefinedName;
  camera.deviceGUID = "4B520000" + aNumber;
  camera.speed = aSpeed;
  return camera;
}

LabController MakeController() {
  LabController controller;
  controller.name = "simusb0";
  controller.description = "Simulated USB 3 host controller";
  controller.vendorID = 0x4B52;
  controller.deviceID = 3;
  LabU3VCamera locked = MakeUSBCamera("sim-usb-locked", "0103", 4);
  locked.isDriverInstalled = false;
  LabPlainUSBDevice plain;
  plain.modelName = "Simulated USB device";
  plain.id = "simusb0/4";
  plain.status = 4;
  controller.devices = {MakeUSBCamera("sim-usb", "0101", 4), MakeUSBCamera("sim-usb-high", "0102", 3), locked, plain};
  return controller;
}

LabAdapter MakeAdapter(const KrString& aName, const KrString& aMAC) {
  LabAdapter adapter;
  adapter.name = aName;
  adapter.description = "Simulated network adapter";
  adapter.macAddress = aMAC;
  return adapter;
}

} // namespace

Lab GetBuiltInLab() {
  LabAdapter first = MakeAdapter("sim0", "02:4b:52:00:77:01");
  first.addresses = {{"192.168.77.1", "255.255.255.0"}};
  first.devices = {MakeMonoCamera(), MakeColourCamera(), MakeMisconfiguredCamera(), MakeRangeCamera()};
  LabAdapter second = MakeAdapter("sim1", "02:4b:52:00:78:01");
  second.addresses = {{"192.168.78.1", "255.255.255.0"}};
  second.isDriverInstalled = true;
  second.devices = {MakeBusyCamera(), MakeCameraWithoutAddress(), MakeTolvanDevice()};
  Lab lab;
  lab.adapters = {first, second, MakeAdapter("sim2", "02:4b:52:00:79:01")};
  lab.controllers = {MakeController()};
  return lab;
}

} // namespace krtransport
