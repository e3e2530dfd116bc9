#pragma once
// Two processes out of one: the driver's, and one that stays behind it, so that nothing which the driver has started
// outlives it, whatever session it is in. What the driver does is left to the caller.

namespace krcamerabridge {

/// Forks, and comes back in the new process, in which the driver is to be loaded. The other one never comes back: it
/// waits until the driver's process has ended, or the other end of aSocket is shut down; then it ends all that comes
/// from there, and ends in the way of the driver's process. Processes that it may not end, of other users, are left
/// after a moment.
///
/// Thread: as long as there is only one. Ownership: borrows the socket, from which it does not read.
void RunKept(int aSocket);

} // namespace krcamerabridge
