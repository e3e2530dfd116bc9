#pragma once
// A GigE Vision device of our own making at the end of a cable. It lives on its adapter's frames alone: its host's
// kernel knows nothing of its address, so that it answers as cameras do whatever its address is, and several may share
// one adapter. What it answers is the registers' business (deviceregisters.h); here a test orders how it misbehaves.

#include "deviceregisters.h"
#include "networkhost.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <vector>

/// How answers travel to somebody who asked by broadcast.
enum class AnswerWay {
  AsCamerasDo, ///< By broadcast where the asker allows it and is of another subnet, else to the asker's MAC.
  ToAsker,     ///< To the MAC of the asker and the address that he sent from.
  ByBroadcast, ///< To everybody, 255.255.255.255.
};

/// Answers from construction to destruction.
///
/// Thread: answers on a thread of its own, which also calls the functions that a test gives; the operations may be
/// called from any. Ownership: borrows nothing once it is constructed.
class TestDevice {
public:
  using Bytes = std::vector<std::uint8_t>;
  /// Makes of a correct discovery acknowledge the datagrams that are sent in its place.
  using ChangeAcknowledge = std::function<std::vector<Bytes>(const Bytes& aAcknowledge)>;

  TestDevice(const NetworkHost& aHost, const std::string& aAdapter, const TestDeviceIdentity& aIdentity = {});
  ~TestDevice();
  TestDevice(const TestDevice&) = delete;
  TestDevice& operator=(const TestDevice&) = delete;

  /// A silent device is as one without power: it answers nobody.
  void SetSilent(bool aIsSilent);
  void SetAnswerWay(AnswerWay aWay);
  void ChangeDiscoveryAcknowledges(ChangeAcknowledge aChange);
  /// After the next discovery command, acknowledges go on without end, so many a second; 0 ends that.
  void Flood(std::uint32_t aAnswersPerSecond);

  /// The registers' operations.
  DeviceAddresses GetAddresses() const;
  void SetForceIPManner(ForceIPManner aManner);
  std::uint32_t Read(std::uint32_t aRegister) const;
  void Write(std::uint32_t aRegister, std::uint32_t aValue);
  void SetForeignControl(std::uint32_t aPrivilege);

  /// How many commands of a number (2 discovery, 4 ForceIP, 0x80 READREG …) were heard, silent or not.
  std::uint32_t GetHeard(std::uint16_t aCommand) const;
  /// How many answers were sent so far.
  std::uint64_t GetSent() const;

private:
  void Serve();
  void TakeFrame(std::span<const std::uint8_t> aFrame);
  void TakeCommand(const UdpFrame& aFrame);
  void GoOnFlooding();
  bool IsForMe(const UdpFrame& aFrame) const;
  UdpFrame MakeAnswerTo(const UdpFrame& aCommand, const DeviceAddresses& aFrom) const;
  void SendFrame(std::span<const std::uint8_t> aFrame) const;

  int mSocket = -1;
  int mStop = -1;
  // Guards all below, which tests and the device's thread use.
  mutable std::mutex mMutex;
  DeviceRegisters mRegisters;
  ForceIPManner mForceIPManner = ForceIPManner::Obey;
  AnswerWay mWay = AnswerWay::AsCamerasDo;
  bool mIsSilent = false;
  ChangeAcknowledge mChange;
  std::map<std::uint16_t, std::uint32_t> mHeard;
  std::uint64_t mSent = 0;
  std::uint32_t mFloodPerSecond = 0;
  std::chrono::steady_clock::time_point mFloodStart;
  std::uint64_t mFlooded = 0;
  UdpFrame mFloodAnswer; // Its payload is the correct acknowledge.

  std::thread mThread;
};
