#include "serialadapter.h"

#include <algorithm>
#include <chrono>

namespace krtest {

// Counts a call while it lives; the mutex is held at both ends.
class SerialLine::Call {
public:
  explicit Call(int& aCalls) : mCalls(aCalls) { ++mCalls; }
  ~Call() { --mCalls; }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

private:
  int& mCalls;
};

KrResult SerialLine::Open() {
  const std::scoped_lock lock(mMutex);
  if (!mOpenFailure.IsOK())
    return mOpenFailure;
  if (mIsLost)
    return KrResult(KrResult::Code::ConnectionLost, "The device is gone.");
  if (mIsOpen)
    return KrResult(KrResult::Code::Busy, "The line is open already.");
  mIsOpen = true;
  ++mOpenings;
  mReceived.clear();
  return {};
}

void SerialLine::Close() {
  const std::scoped_lock lock(mMutex);
  mIsOpen = false;
  mChanged.notify_all();
}

bool SerialLine::Wait(std::unique_lock<std::mutex>& aLock, std::uint32_t aTimeoutMs, const std::stop_token& aCancel,
                      const std::function<bool()>& aIsOver) {
  return mChanged.wait_for(aLock, aCancel, std::chrono::milliseconds(aTimeoutMs), aIsOver);
}

KrResult SerialLine::Check(const std::stop_token& aCancel, int aOpening) const {
  if (mIsLost)
    return KrResult(KrResult::Code::ConnectionLost, "The device is gone.");
  if (aCancel.stop_requested() || (aOpening > 0 && (!mIsOpen || mOpenings != aOpening)))
    return KrResult(KrResult::Code::Aborted, "The call was ended.");
  if (!mIsOpen)
    return KrResult(KrResult::Code::WrongState, "The line is closed.");
  return {};
}

KrResult SerialLine::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                          const std::stop_token& aCancel) {
  std::unique_lock lock(mMutex);
  const Call call(mCalls);
  ++mReads;
  aRead = 0;
  if (KrResult result = Check(aCancel, 0); !result.IsOK())
    return result;
  const int opening = mOpenings;
  Wait(lock, aTimeoutMs, aCancel,
       [&] { return !mReceived.empty() || !mReadFailure.IsOK() || !Check(aCancel, opening).IsOK(); });
  if (KrResult result = Check(aCancel, opening); !result.IsOK())
    return result;
  if (!mReadFailure.IsOK())
    return mReadFailure;
  if (mReceived.empty())
    return KrResult(KrResult::Code::TimeLimitExceeded, "Nothing came.");
  aRead = std::min(aSize, mReceived.size());
  std::copy_n(mReceived.begin(), aRead, aBytes);
  mReceived.erase(mReceived.begin(), mReceived.begin() + static_cast<std::ptrdiff_t>(aRead));
  return {};
}

KrResult SerialLine::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                           std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  std::unique_lock lock(mMutex);
  const Call call(mCalls);
  mWrites.push_back(aSize);
  aWritten = 0;
  if (KrResult result = Check(aCancel, 0); !result.IsOK())
    return result;
  const int opening = mOpenings;
  while (aWritten < aSize) {
    const bool isInTime = Wait(lock, aTimeoutMs, aCancel,
                               [&] { return mRoom > 0 || !mWriteFailure.IsOK() || !Check(aCancel, opening).IsOK(); });
    if (KrResult result = Check(aCancel, opening); !result.IsOK())
      return result;
    if (!mWriteFailure.IsOK())
      return mWriteFailure;
    if (!isInTime)
      return KrResult(KrResult::Code::TimeLimitExceeded, "The line is full.");
    const std::size_t count = std::min(mRoom, aSize - aWritten);
    mSent.append(reinterpret_cast<const char*>(aBytes) + aWritten, count);
    if (mLoopsBack)
      mReceived.insert(mReceived.end(), aBytes + aWritten, aBytes + aWritten + count);
    if (mRoom != SIZE_MAX)
      mRoom -= count;
    aWritten += count;
    mChanged.notify_all();
  }
  return {};
}

void SerialLine::Receive(const std::string& aBytes) {
  const std::scoped_lock lock(mMutex);
  mReceived.insert(mReceived.end(), aBytes.begin(), aBytes.end());
  mChanged.notify_all();
}

std::string SerialLine::GetSent() const {
  const std::scoped_lock lock(mMutex);
  return mSent;
}

std::vector<std::size_t> SerialLine::GetWrites() const {
  const std::scoped_lock lock(mMutex);
  return mWrites;
}

void SerialLine::SetLoopback(bool aIsOn) {
  const std::scoped_lock lock(mMutex);
  mLoopsBack = aIsOn;
}

void SerialLine::SetRoom(std::size_t aBytes) {
  const std::scoped_lock lock(mMutex);
  mRoom = aBytes;
  mChanged.notify_all();
}

void SerialLine::Lose() {
  const std::scoped_lock lock(mMutex);
  mIsLost = true;
  mChanged.notify_all();
}

void SerialLine::Restore() {
  const std::scoped_lock lock(mMutex);
  mIsLost = false;
  mIsOpen = false;
}

void SerialLine::FailWriting(const KrResult& aResult) {
  const std::scoped_lock lock(mMutex);
  mWriteFailure = aResult;
  mChanged.notify_all();
}

void SerialLine::FailOpening(const KrResult& aResult) {
  const std::scoped_lock lock(mMutex);
  mOpenFailure = aResult;
}

void SerialLine::FailReading(const KrResult& aResult) {
  const std::scoped_lock lock(mMutex);
  mReadFailure = aResult;
  mChanged.notify_all();
}

bool SerialLine::IsOpen() const {
  const std::scoped_lock lock(mMutex);
  return mIsOpen;
}

int SerialLine::CountOpenings() const {
  const std::scoped_lock lock(mMutex);
  return mOpenings;
}

int SerialLine::CountCalls() const {
  const std::scoped_lock lock(mMutex);
  return mCalls;
}

int SerialLine::CountReads() const {
  const std::scoped_lock lock(mMutex);
  return mReads;
}

std::size_t SerialLine::CountWaiting() const {
  const std::scoped_lock lock(mMutex);
  return mReceived.size();
}

namespace {

KrResult RefuseName(const KrString& aName) {
  return KrResult(KrResult::Code::NotFound, KrString("There is no parameter ") + aName + ".");
}

} // namespace

std::shared_ptr<SerialLine> SerialAdapter::AddLine(std::uint32_t aNumber) {
  return lines[aNumber] = std::make_shared<SerialLine>();
}

bool SerialAdapter::HasParameter(const KrString& aName) {
  return enumerations.contains(aName.CStr()) || booleans.contains(aName.CStr());
}

KrResult SerialAdapter::GetEnumEntries(const KrString& aName, KrStringList& aEntries) {
  const auto found = enumerations.find(aName.CStr());
  if (found == enumerations.end())
    return RefuseName(aName);
  aEntries.Clear();
  for (const std::string& entry : found->second.entries)
    aEntries.Add(entry.c_str());
  return {};
}

KrResult SerialAdapter::GetEnumValue(const KrString& aName, KrString& aValue) {
  const auto found = enumerations.find(aName.CStr());
  if (found == enumerations.end())
    return RefuseName(aName);
  if (!readFailure.IsOK())
    return readFailure;
  aValue = found->second.value.c_str();
  return {};
}

KrResult SerialAdapter::SetEnumValue(const KrString& aName, const KrString& aValue) {
  const auto found = enumerations.find(aName.CStr());
  if (found == enumerations.end())
    return RefuseName(aName);
  written.push_back(std::string(aName.CStr()) + "=" + aValue.CStr());
  if (!writeFailure.IsOK())
    return writeFailure;
  if (std::ranges::find(found->second.entries, aValue.CStr()) == found->second.entries.end())
    return KrResult(KrResult::Code::InvalidInput, "There is no such entry.");
  found->second.value = aValue.CStr();
  return {};
}

KrResult SerialAdapter::GetBooleanValue(const KrString& aName, bool& aValue) {
  const auto found = booleans.find(aName.CStr());
  if (found == booleans.end())
    return RefuseName(aName);
  if (!readFailure.IsOK())
    return readFailure;
  aValue = found->second;
  return {};
}

KrResult SerialAdapter::SetBooleanValue(const KrString& aName, bool aValue) {
  const auto found = booleans.find(aName.CStr());
  if (found == booleans.end())
    return RefuseName(aName);
  written.push_back(std::string(aName.CStr()) + (aValue ? "=true" : "=false"));
  if (!writeFailure.IsOK())
    return writeFailure;
  found->second = aValue;
  return {};
}

std::shared_ptr<krsystem::IByteChannel> SerialAdapter::GetByteChannel(std::uint32_t aNumber) {
  const auto line = lines.find(aNumber);
  return line == lines.end() ? nullptr : line->second;
}

} // namespace krtest
