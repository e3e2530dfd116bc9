#pragma once
// The words of a lab file, and the numbers that they stand for.

#include "krsystem/itransport.h"
#include "simulation/lab.h"
#include "simulation/labfile/labmap.h"

#include <array>

namespace krtransport {

enum class LabDeviceKind { GigEVision, Tolvan, Usb3Vision, Usb };

inline constexpr std::array<LabWord, 2> kNetworkKinds = {
    {{"gigeVision", static_cast<std::int32_t>(LabDeviceKind::GigEVision)},
     {"tolvan", static_cast<std::int32_t>(LabDeviceKind::Tolvan)}}};
inline constexpr std::array<LabWord, 2> kUsbKinds = {
    {{"usb3Vision", static_cast<std::int32_t>(LabDeviceKind::Usb3Vision)},
     {"usb", static_cast<std::int32_t>(LabDeviceKind::Usb)}}};
inline constexpr std::array<LabWord, 5> kSpeedWords = {
    {{"unknown", 0}, {"low", 1}, {"full", 2}, {"high", 3}, {"super", 4}}};
/// As USBFields numbers them.
inline constexpr std::array<LabWord, 10> kStatusWords = {{{"connected", 0},
                                                          {"failedEnumeration", 1},
                                                          {"generalFailure", 2},
                                                          {"causedOvercurrent", 3},
                                                          {"notEnoughPower", 4},
                                                          {"notEnoughBandwidth", 5},
                                                          {"hubNestedTooDeeply", 6},
                                                          {"legacyHub", 7},
                                                          {"enumerating", 8},
                                                          {"reset", 9}}};
inline constexpr std::array<LabWord, 4> kClassWords = {
    {{"transmitter", 0}, {"receiver", 1}, {"transceiver", 2}, {"peripheral", 3}}};
/// Bits of the ways in which a device gets its address.
inline constexpr std::array<LabWord, 3> kAddressingWords = {{{"persistent", 1}, {"dhcp", 2}, {"linkLocal", 4}}};
/// A camera that does not say who controls it; no AccessType of its own.
inline constexpr std::int32_t kSilentControl = -1;
inline constexpr std::array<LabWord, 4> kControlWords = {
    {{"open", static_cast<std::int32_t>(krsystem::AccessType::Open)},
     {"control", static_cast<std::int32_t>(krsystem::AccessType::Control)},
     {"exclusive", static_cast<std::int32_t>(krsystem::AccessType::Exclusive)},
     {"silent", kSilentControl}}};
inline constexpr std::array<LabWord, 10> kSerialPortWords = {{{kSerialPortNames[0], 0},
                                                              {kSerialPortNames[1], 1},
                                                              {kSerialPortNames[2], 2},
                                                              {kSerialPortNames[3], 3},
                                                              {kSerialPortNames[4], 4},
                                                              {kSerialPortNames[5], 5},
                                                              {kSerialPortNames[6], 6},
                                                              {kSerialPortNames[7], 7},
                                                              {kSerialPortNames[8], 8},
                                                              {kSerialPortNames[9], 9}}};
inline constexpr std::array<LabWord, 5> kLineEndWords = {
    {{"nothing", static_cast<std::int32_t>(LabLineEnd::Nothing)},
     {"echo", static_cast<std::int32_t>(LabLineEnd::Echo)},
     {"instrument", static_cast<std::int32_t>(LabLineEnd::Instrument)},
     {"tty", static_cast<std::int32_t>(LabLineEnd::Tty)},
     {"camera", static_cast<std::int32_t>(LabLineEnd::Camera)}}};
inline constexpr std::array<LabWord, 3> kProtocolWords = {
    {{"GenCP", static_cast<std::int32_t>(CLCameraProtocol::GenCP)},
     {"CLProtocol", static_cast<std::int32_t>(CLCameraProtocol::CLProtocol)},
     {"text", static_cast<std::int32_t>(CLCameraProtocol::Text)}}};
inline constexpr std::array<LabWord, 2> kDescriptionWords = {
    {{"plain", static_cast<std::int32_t>(DescriptionFormat::Plain)},
     {"zipped", static_cast<std::int32_t>(DescriptionFormat::Zipped)}}};
inline constexpr std::array<LabWord, 3> kPoclWords = {{{"none", static_cast<std::int32_t>(LabPocl::None)},
                                                       {"off", static_cast<std::int32_t>(LabPocl::Off)},
                                                       {"on", static_cast<std::int32_t>(LabPocl::On)}}};
inline constexpr std::array<LabWord, 3> kFilterWords = {{{"off", 0}, {"strict", 1}, {"loose", 2}}};

} // namespace krtransport
