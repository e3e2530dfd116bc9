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
  camera.pixelFormats.assign(kGreyFormats.begin(), kGreyFormats.end());
  return camera;
}

LabCamera MakeColourCamera() {
  LabCamera camera =
      MakeCamera("Simulated Colour Camera", "sim-colour", "SIM-0002", "02:4b:52:00:77:11", "192.168.77.11");
  camera.sensorWidth = 1920;
  camera.sensorHeight = 1200;
  camera.framesPerSecond = 60.0;
  camera.pixelFormats.assign(kColourFormats.begin(), kColourFormats.end());
  return camera;
}

LabCamera MakeMisconfiguredCamera() {
  return MakeCamera("Simulated Mono Camera", "sim-foreign", "SIM-0003", "02:4b:52:00:77:12", "10.20.30.40");
}

LabCamera MakeRangeCamera() {
  LabCamera camera = MakeCamera("Simulated 3D Camera", "sim-3d", "SIM-0004", "02:4b:52:00:77:13", "192.168.77.12");
  camera.pixelFormats.assign(kRangeFormats.begin(), kRangeFormats.end());
  return camera;
}

} // namespace

Lab GetBuiltInLab() {
  LabAdapter adapter;
  adapter.name = "sim0";
  adapter.description = "Simulated network adapter";
  adapter.macAddress = "02:4b:52:00:77:01";
  adapter.ipAddress = "192.168.77.1";
  adapter.subnetMask = "255.255.255.0";
  adapter.cameras = {MakeMonoCamera(), MakeColourCamera(), MakeMisconfiguredCamera(), MakeRangeCamera()};
  return {{adapter}};
}

} // namespace krtransport
