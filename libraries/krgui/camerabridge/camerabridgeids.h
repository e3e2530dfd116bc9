#pragma once
// The controls of the camera bridge manager by their ids in the template, for whatever looks one up.

namespace krgui::cameraid {

inline constexpr int kSetupBox = 1159;
inline constexpr int kDevicePort = 1048;
inline constexpr int kNone = 1145;
inline constexpr int kCLProtocol = 1146;
inline constexpr int kTemplateLabel = 1155;
inline constexpr int kTemplate = 1127;
inline constexpr int kProbe = 1141;
inline constexpr int kProbeStatus = 1154;
inline constexpr int kCLProtocolXMLLabel = 1156;
inline constexpr int kCLProtocolXML = 1129;
inline constexpr int kCLProtocolConnect = 1140;
inline constexpr int kCLProtocolStatus = 1151;
inline constexpr int kGenCP = 1147;
inline constexpr int kGenCPXMLLabel = 1157;
inline constexpr int kGenCPXML = 1134;
inline constexpr int kGenCPConnect = 1142;
inline constexpr int kGenCPStatus = 1153;
inline constexpr int kCameraFile = 1148;
inline constexpr int kPathLabel = 1150;
inline constexpr int kPath = 1131;
inline constexpr int kBrowse = 1136;
inline constexpr int kLoad = 1138;
inline constexpr int kCameraFileStatus = 1152;
inline constexpr int kSourceLabel = 1099;
inline constexpr int kSource = 1126;
inline constexpr int kSynchronization = 1160;
inline constexpr int kState = 1163;
inline constexpr int kStatisticsBox = 1158;
inline constexpr int kBytesSent = 1097;
inline constexpr int kBytesReceived = 1098;
inline constexpr int kReset = 1010;
inline constexpr int kPoCL = 1161;
inline constexpr int kBrowserFrame = 1144;

} // namespace krgui::cameraid
