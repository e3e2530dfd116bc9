#include "hangingdisk.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <utility>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// A message of one byte, with room for a descriptor beside it.
struct Message {
  Message() {
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
  }

  char byte = 0;
  iovec content = {&byte, 1};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control = {};
  msghdr message = {};
};

bool SendDescriptor(int aSocket, int aDescriptor) {
  Message sent;
  cmsghdr* const header = CMSG_FIRSTHDR(&sent.message);
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(sizeof(int));
  std::memcpy(CMSG_DATA(header), &aDescriptor, sizeof(int));
  return ::sendmsg(aSocket, &sent.message, MSG_NOSIGNAL) == 1;
}

int ReceiveDescriptor(int aSocket) {
  Message received;
  int descriptor = -1;
  if (::recvmsg(aSocket, &received.message, MSG_CMSG_CLOEXEC) != 1)
    return descriptor;
  if (const cmsghdr* const header = CMSG_FIRSTHDR(&received.message))
    std::memcpy(&descriptor, CMSG_DATA(header), sizeof(int));
  return descriptor;
}

// Has the system ask before it serves any of three calls; gives what it asks by.
int InstallFilter(const std::array<std::uint32_t, 3>& aCalls) {
  std::array<sock_filter, 6> steps = {{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, aCalls[0], 3, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, aCalls[1], 2, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, aCalls[2], 1, 0),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF),
  }};
  const sock_fprog program = {static_cast<unsigned short>(steps.size()), steps.data()};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
    return -1;
  return static_cast<int>(::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program));
}

bool AwaitReadable(int aDescriptor, int aEnd) {
  std::array<pollfd, 2> waits = {{{aDescriptor, POLLIN, 0}, {aEnd, POLLIN, 0}}};
  while (::poll(waits.data(), waits.size(), -1) < 0)
    if (errno != EINTR)
      return false;
  return (waits[0].revents & POLLIN) != 0 && waits[1].revents == 0;
}

std::string ReadLink(const std::string& aPath) {
  std::array<char, PATH_MAX> target = {};
  const ssize_t size = ::readlink(aPath.c_str(), target.data(), target.size());
  return {target.data(), static_cast<std::size_t>(size > 0 ? size : 0)};
}

// A text in the memory of another process, which may end with its page.
std::string ReadText(const std::string& aMemory, std::uint64_t aAddress) {
  const krbase::FileDescriptor memory(::open(aMemory.c_str(), O_RDONLY | O_CLOEXEC));
  std::string text;
  char letter = 0;
  while (text.size() < PATH_MAX && ::pread(memory.Get(), &letter, 1, static_cast<off_t>(aAddress + text.size())) == 1 &&
         letter != 0)
    text += letter;
  return text;
}

} // namespace

HangingDisk::HangingDisk(std::string aFolder) : mFolder(std::move(aFolder)), mEnd(::eventfd(0, EFD_CLOEXEC)) {
  std::array<int, 2> ends = {-1, -1};
  EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
  mToServe = krbase::FileDescriptor(ends[0]);
  mFromEntered = krbase::FileDescriptor(ends[1]);
  mServer = std::thread([this] { Serve(); });
}

HangingDisk::~HangingDisk() {
  Recover();
  EXPECT_EQ(::eventfd_write(mEnd.Get(), 1), 0);
  mServer.join();
}

bool HangingDisk::Enter(Calls aCalls) {
  constexpr std::array<std::uint32_t, 3> kFlushes = {SYS_fsync, SYS_sync_file_range, SYS_statfs};
  constexpr std::array<std::uint32_t, 3> kOpenings = {SYS_openat, SYS_openat, SYS_openat};
  const krbase::FileDescriptor listener(InstallFilter(aCalls == Calls::Flushes ? kFlushes : kOpenings));
  return listener.IsOpen() && SendDescriptor(mFromEntered.Get(), listener.Get());
}

void HangingDisk::Hang() {
  const std::lock_guard lock(mMutex);
  mIsHanging = true;
}

void HangingDisk::Recover() {
  std::vector<std::uint64_t> waiting;
  {
    const std::lock_guard lock(mMutex);
    mIsHanging = false;
    waiting.swap(mWaiting);
  }
  for (const std::uint64_t call : waiting)
    Answer(call);
}

bool HangingDisk::TakeOne() {
  std::uint64_t call = 0;
  {
    const std::lock_guard lock(mMutex);
    if (mWaiting.empty())
      return false;
    call = mWaiting.front();
    mWaiting.erase(mWaiting.begin());
  }
  Answer(call);
  return true;
}

std::size_t HangingDisk::CountWaiting() const {
  const std::lock_guard lock(mMutex);
  return mWaiting.size();
}

std::size_t HangingDisk::CountThreads() {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

bool HangingDisk::ReceiveListener() {
  if (!AwaitReadable(mToServe.Get(), mEnd.Get()))
    return false;
  const std::lock_guard lock(mMutex);
  mListener = krbase::FileDescriptor(ReceiveDescriptor(mToServe.Get()));
  return mListener.IsOpen();
}

void HangingDisk::Serve() {
  if (!ReceiveListener())
    return;
  while (AwaitReadable(mListener.Get(), mEnd.Get())) {
    seccomp_notif call = {};
    // Whoever called may be gone meanwhile.
    if (::ioctl(mListener.Get(), SECCOMP_IOCTL_NOTIF_RECV, &call) != 0)
      continue;
    const bool isOnDisk = GetPath(call).starts_with(mFolder);
    {
      const std::lock_guard lock(mMutex);
      if (isOnDisk && mIsHanging) {
        mWaiting.push_back(call.id);
        continue;
      }
    }
    Answer(call.id);
  }
}

// The system goes on as if it had not asked.
void HangingDisk::Answer(std::uint64_t aCall) const {
  seccomp_notif_resp answer = {};
  answer.id = aCall;
  answer.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
  [[maybe_unused]] const int isAnswered = ::ioctl(mListener.Get(), SECCOMP_IOCTL_NOTIF_SEND, &answer); // Or it is gone.
}

std::string HangingDisk::GetPath(const seccomp_notif& aCall) {
  const std::string process = "/proc/" + std::to_string(aCall.pid);
  if (aCall.data.nr == SYS_fsync || aCall.data.nr == SYS_sync_file_range)
    return ReadLink(process + "/fd/" + std::to_string(aCall.data.args[0]));
  return ReadText(process + "/mem", aCall.data.args[aCall.data.nr == SYS_openat ? 1 : 0]);
}
