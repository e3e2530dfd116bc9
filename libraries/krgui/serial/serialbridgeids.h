#pragma once
// The controls of the serial bridge manager and its dialogs by their ids in the templates, for whatever looks one up.

#include <array>

namespace krgui::bridgeid {

inline constexpr int kPortBox = 1200;
inline constexpr int kDevicePort = 1049;
inline constexpr int kSetupBox = 1201;
inline constexpr int kNone = 1071;
inline constexpr int kCOMPortLink = 1073;
inline constexpr int kCOMPortLabel = 1087;
inline constexpr int kCOMPort = 1048;
inline constexpr int kConfigure = 1017;
inline constexpr int kDescription = 1101;
inline constexpr int kCameraLink = 1075;
inline constexpr int kCameraLinkName = 1099;
inline constexpr int kState = 1196;
inline constexpr int kRatesBox = 1202;
/// In the order of kBaudRates.
inline constexpr std::array kRates = {1210, 1211, 1212, 1213, 1214, 1215, 1216, 1217, 1218, 1219};
inline constexpr int kStatisticsBox = 1203;
inline constexpr int kBytesSent = 1097;
inline constexpr int kBytesReceived = 1098;
inline constexpr int kReset = 1010;

// Of the dialogs.
inline constexpr int kBaudRate = 1220;
inline constexpr int kParity = 1221;
inline constexpr int kByteSize = 1222;
inline constexpr int kStopBits = 1223;
inline constexpr int kDeviceBaudRate = 1224;
inline constexpr int kDeviceBaudRateText = 1225;

} // namespace krgui::bridgeid
