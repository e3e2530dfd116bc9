#pragma once
// A register port that writes down every access to the port behind it, and fails on order.

#include "krgenicam/ikrregisterport.h"

#include <cstring>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

/// One access.
struct RegisterAccessRecord {
  bool isWrite = false;
  std::uint64_t address = 0;
  std::size_t length = 0;

  friend bool operator==(const RegisterAccessRecord&, const RegisterAccessRecord&) = default;
};

/// Thread: any. Ownership: borrows the port behind it.
class RecordingPort final : public IKrRegisterPort {
public:
  using Fault = std::function<KrResult(const RegisterAccessRecord&)>;

  explicit RecordingPort(IKrRegisterPort& aPort) : mPort(aPort) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override {
    KrResult result = Note({false, aAddress, aLength});
    return result.IsOK() ? mPort.Read(aAddress, aData, aLength, aTimeoutMs, aCancel) : result;
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override {
    KrResult result = Note({true, aAddress, aLength});
    return result.IsOK() ? mPort.Write(aAddress, aData, aLength, aTimeoutMs, aCancel) : result;
  }

  /// What has been accessed since the last call.
  std::vector<RegisterAccessRecord> TakeRecords() {
    const std::lock_guard lock(mMutex);
    return std::exchange(mRecords, {});
  }
  std::size_t CountReads() { return Count(false); }
  std::size_t CountWrites() { return Count(true); }
  /// Asked before each access from now on; a failure is what the access gives. Called with a lock of the port held.
  void SetFault(Fault aFault) {
    const std::lock_guard lock(mMutex);
    mFault = std::move(aFault);
  }

private:
  KrResult Note(const RegisterAccessRecord& aRecord) {
    const std::lock_guard lock(mMutex);
    mRecords.push_back(aRecord);
    return mFault ? mFault(aRecord) : KrResult();
  }
  std::size_t Count(bool aIsWrite) {
    const std::lock_guard lock(mMutex);
    std::size_t count = 0;
    for (const RegisterAccessRecord& record : mRecords)
      count += record.isWrite == aIsWrite ? 1 : 0;
    return count;
  }

  IKrRegisterPort& mPort;
  std::mutex mMutex; // Guards the members from here on.
  std::vector<RegisterAccessRecord> mRecords;
  Fault mFault;
};
