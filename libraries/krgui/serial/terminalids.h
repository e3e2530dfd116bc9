#pragma once
// The controls of the serial terminal by their ids in its template, for whatever looks one up: the window, its tests
// and its benchmark.

namespace krgui::terminalid {

inline constexpr int kPort = 1048;
inline constexpr int kSpeed = 1126;
inline constexpr int kLoopback = 1169;
inline constexpr int kSendASCII = 1055;
inline constexpr int kSendHexadecimal = 1056;
inline constexpr int kData = 1057;
inline constexpr int kSend = 1004;
inline constexpr int kCR = 1059;
inline constexpr int kLF = 1060;
inline constexpr int kNull = 1061;
inline constexpr int kOther = 1064;
inline constexpr int kOtherField = 1065;
inline constexpr int kHexLabel = 1062;
inline constexpr int kFile = 1180;
inline constexpr int kBrowse = 1000;
inline constexpr int kSendFile = 1166;
inline constexpr int kStop = 1181;
inline constexpr int kProgress = 1182;
inline constexpr int kProgressText = 1183;
inline constexpr int kValidation = 1160;
inline constexpr int kTranscriptBox = 1063;
inline constexpr int kShowASCII = 1051;
inline constexpr int kShowHexadecimal = 1053;
inline constexpr int kShowHybrid = 1054;
inline constexpr int kEcho = 1069;
inline constexpr int kPause = 1184;
inline constexpr int kClear = 1009;
inline constexpr int kSave = 1185;
inline constexpr int kTranscript = 1058;
inline constexpr int kStatus = 1187;
inline constexpr int kPortLabel = 1188;
inline constexpr int kSpeedLabel = 1189;

} // namespace krgui::terminalid
