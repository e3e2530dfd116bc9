#pragma once
// The end of a process with open devices: without this, a camera that was under control when its process was killed
// stays so until its heartbeat runs out, and the next start is refused.

#include "krbase/krresult.h"

/// From now on every open KrDevice of this process gives its control back when the process ends by exit(), quick_exit()
/// or the end of main(), or by SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGALRM, SIGUSR1 or SIGUSR2, of which those
/// are taken whose action is the default one at this moment. A signal that the application handles or ignores is left
/// alone. After a signal was taken the process ends by it as it would have, some moments later; until then its other
/// threads go on (the one that wrote to a closed pipe with EPIPE, as it does without a signal once a GigE Vision device
/// was opened: what talks to it ignores SIGPIPE in the whole process) and nothing can be opened any more. Where the
/// system does not let a process end by a signal, as the first one of a container, it exits with 128 and the signal's
/// number.
///
/// All devices give back at once; the process waits three seconds at most, for a device that does not answer. Not
/// covered, so that the heartbeat has to run out: SIGKILL, other signals that end a process (real-time ones, the
/// system's limits of CPU time and file size), crashes, abort(), an exception that nobody catches, and _exit().
///
/// To be called once near the beginning of main(), before threads are started and before the application takes signals
/// itself. Calling it again is harmless and takes signals whose action has become the default one since. A process that
/// is forked afterwards leaves its parent's devices alone, has the signals' default actions, and calls it anew for
/// devices of its own.
///
/// Thread: any. SystemError when the system gives no event descriptor or no thread; nothing has changed then.
///
///     int main() {
///       if (KrResult result = KrGiveBackDevicesAtEnd(); !result.IsOK())
///         std::cerr << result.GetDescription().CStr() << '\n';
///       ...
///     }
KR_EXPORT KrResult KrGiveBackDevicesAtEnd();
