#pragma once
// A device with serial lines and the parameters that go with them, for what talks to a device through its adapter.

#include "krdevice/ikrdeviceadapter.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace krtest {

/// A line whose other end is the test: what is written waits in GetSent, what is given to Receive is read.
class SerialLine : public krsystem::IByteChannel {
public:
  KrResult Open() override;
  void Close() override;
  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

  /// The other end sends.
  void Receive(const std::string& aBytes);
  /// What was written since the line was made.
  std::string GetSent() const;
  /// How many calls of Write there were, and the bytes of each.
  std::vector<std::size_t> GetWrites() const;
  /// Everything that is written comes back.
  void SetLoopback(bool aIsOn);
  /// How many bytes the line takes until it is full; writing waits from then on. No limit at first.
  void SetRoom(std::size_t aBytes);
  /// The device has gone: everything fails with ConnectionLost.
  void Lose();
  /// It is back, and the line closed.
  void Restore();
  /// Writing fails with this at once, until it is OK again.
  void FailWriting(const KrResult& aResult);
  /// Every opening fails with this.
  void FailOpening(const KrResult& aResult);
  /// Reading fails with this at once, until it is OK again.
  void FailReading(const KrResult& aResult);
  bool IsOpen() const;
  int CountOpenings() const;
  int CountReads() const;
  /// Calls of Read and Write that run.
  int CountCalls() const;
  /// Bytes that came and were not read yet.
  std::size_t CountWaiting() const;

private:
  class Call;

  bool Wait(std::unique_lock<std::mutex>& aLock, std::uint32_t aTimeoutMs, const std::stop_token& aCancel,
            const std::function<bool()>& aIsOver);
  KrResult Check(const std::stop_token& aCancel, int aOpening) const;

  mutable std::mutex mMutex; // Guards the members from here on.
  std::condition_variable_any mChanged;
  std::deque<std::uint8_t> mReceived;
  std::string mSent;
  std::vector<std::size_t> mWrites;
  std::size_t mRoom = SIZE_MAX;
  KrResult mOpenFailure;
  KrResult mReadFailure;
  KrResult mWriteFailure;
  bool mLoopsBack = false;
  bool mIsOpen = false;
  bool mIsLost = false;
  int mOpenings = 0;
  int mReads = 0;
  int mCalls = 0;
};

/// Lines by number, and parameters by name, which a test may change at any time.
///
/// Thread: any; the maps are the test's, to be filled before the adapter is used.
class SerialAdapter : public IKrDeviceAdapter {
public:
  struct Enumeration {
    std::vector<std::string> entries;
    std::string value;
  };

  std::map<std::uint32_t, std::shared_ptr<SerialLine>> lines;
  std::map<std::string, Enumeration> enumerations;
  std::map<std::string, bool> booleans;
  /// Reading a parameter's value fails while this is not OK.
  KrResult readFailure;
  /// Setting a parameter fails while this is not OK; what was tried is in written all the same.
  KrResult writeFailure;
  /// "name=value" for each value that was to be set, in order.
  std::vector<std::string> written;
  /// What the device is called by.
  std::string text = "Model X 00:11:22:33:44:55";

  /// Adds a line, and gives it.
  std::shared_ptr<SerialLine> AddLine(std::uint32_t aNumber);

  bool HasParameter(const KrString& aName) override;
  bool IsParameterAvailable(const KrString& aName) override { return HasParameter(aName); }
  KrResult GetEnumEntries(const KrString& aName, KrStringList& aEntries) override;
  KrResult GetEnumValue(const KrString& aName, KrString& aValue) override;
  KrResult SetEnumValue(const KrString& aName, const KrString& aValue) override;
  KrResult GetBooleanValue(const KrString& aName, bool& aValue) override;
  KrResult SetBooleanValue(const KrString& aName, bool aValue) override;
  KrString GetDeviceText() const override { return text; }
  std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t aNumber) override;
};

} // namespace krtest
