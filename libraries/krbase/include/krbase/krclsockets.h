#pragma once
// The directory in which bridges of one user publish ports for programs that use the Camera Link serial functions, and
// the sockets in it. What is said on a socket is left to others (krclwire.h).
//
// The directory is what KRGUI_CAMERA_LINK_DIR names, else krgui/camera-link in $XDG_RUNTIME_DIR where that is the
// user's, else /tmp/krgui-camera-link-<user id>. It is the user's and nobody else may enter it. A port is a lock file
// that holds its name, N.lock, and a socket, N.sock. The lock is held as long as the process lives that published it.

#include "krbase/filedescriptor.h"
#include "krbase/krresult.h"
#include "krbase/krstring.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// A port that is published.
struct KR_EXPORT KrCLPort {
  std::uint32_t number = 0; ///< Its file's; given to another when it has gone.
  KrString name;            ///< No other port has it at the same time.
};

/// A port of this process, published as long as the object lives.
///
/// Thread: any.
/// Ownership: owns the socket and its files.
class KR_EXPORT KrCLPublication {
public:
  /// Publishes a port. Control characters and '#' of its name become '-', and it is cut to kKrCLMostName bytes; a name
  /// that is published already gets " (2)" and so on behind it. InvalidInput for a name of blanks and control
  /// characters alone, AccessDenied when the directory is another user's or others may enter it, Busy when another
  /// process keeps the directory to itself for a second, which the next calls do not wait for, SystemError as the
  /// system says; aPublication is set on success only.
  static KrResult Make(const KrString& aName, std::unique_ptr<KrCLPublication>& aPublication);
  ~KrCLPublication();
  KrCLPublication(const KrCLPublication&) = delete;
  KrCLPublication& operator=(const KrCLPublication&) = delete;

  /// The name as it is published.
  const KrString& GetName() const;
  /// The listening socket, of packets, which does not wait. Who asks at it may be another user where the directory's
  /// rights were changed meanwhile: see KrIsOwnUser.
  int GetSocket() const;

private:
  struct Body;
  explicit KrCLPublication(std::unique_ptr<Body> aBody);

  std::unique_ptr<Body> mBody;
};

/// The ports that are published at the moment by any process of this user, in the order of their names. Files of
/// processes that have died are removed. Results as of KrCLPublication::Make; without a directory there are none.
/// Thread: any.
KR_EXPORT KrResult KrListCLPorts(std::vector<KrCLPort>& aPorts);

/// Connects with a port; the socket is one of packets and does not wait. NotFound for a port that is not published any
/// more, TimeLimitExceeded when too many ask at it, AccessDenied and SystemError as of Make. Thread: any.
KR_EXPORT KrResult KrConnectCLPort(const KrCLPort& aPort, std::chrono::milliseconds aLimit,
                                   krbase::FileDescriptor& aSocket);

/// Receives a packet without waiting: its length, which is more than aSize where only its beginning had room; 0 where the
/// other sends no more, or sent an empty one; negative with errno as of recv, EAGAIN where there is none yet. All that
/// was sent before the end comes before it. Thread: any, one at a time for a socket.
KR_EXPORT std::ptrdiff_t KrReceiveCLPacket(int aSocket, std::uint8_t* aBytes, std::size_t aSize);

/// Whether the process at the other end of a Unix socket is of this process' user. Thread: any.
KR_EXPORT bool KrIsOwnUser(int aSocket);
