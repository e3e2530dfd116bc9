#pragma once
// A disk that stops answering, as a network folder does whose server is gone: whoever flushes a file below a folder, or
// asks for the folder's room, waits in the system until the disk is well again, or is killed; or whoever opens a file
// there. Reading and writing of what is open go on, as they do in the system's memory.

#include "krbase/filedescriptor.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct seccomp_notif;

/// Needs no rights and no file system: the system asks this one before it serves such a call (seccomp).
///
/// Thread: any; one Enter in all. Ownership: to outlive whoever entered; its end makes the disk well.
///
///     HangingDisk disk(folder);
///     std::thread([&] { disk.Enter(); recorder.Start(options); … }).join();
class HangingDisk {
public:
  /// What waits for a disk that hangs.
  enum class Calls {
    Flushes,  ///< And questions for room.
    Openings, ///< For threads that end before the disk does: without it they can open nothing any more.
  };

  explicit HangingDisk(std::string aFolder);
  ~HangingDisk();
  HangingDisk(const HangingDisk&) = delete;
  HangingDisk& operator=(const HangingDisk&) = delete;

  /// From now on the calling thread, the threads and processes that it makes, and the program that its process becomes,
  /// are on this disk, for good. May be called in a child process before it runs its program. False where the system
  /// refuses.
  bool Enter(Calls aCalls = Calls::Flushes);
  void Hang();
  void Recover();
  /// While it hangs, lets it answer the call that has waited longest; false where none waits.
  bool TakeOne();
  /// How many calls wait for the disk.
  std::size_t CountWaiting() const;
  /// Of this process, to await the end of those that were left on the disk.
  static std::size_t CountThreads();

private:
  void Serve();
  bool ReceiveListener();
  void Answer(std::uint64_t aCall) const;
  static std::string GetPath(const seccomp_notif& aCall);

  const std::string mFolder;
  krbase::FileDescriptor mToServe; ///< Carries the listener from where it is made.
  krbase::FileDescriptor mFromEntered;
  krbase::FileDescriptor mEnd; ///< Is readable when it is to end.
  krbase::FileDescriptor mListener;

  mutable std::mutex mMutex; ///< Guards both.
  std::vector<std::uint64_t> mWaiting;
  bool mIsHanging = false;

  std::thread mServer;
};
