#pragma once
// How the finder's window behaves while discovery runs: how long it keeps the user-interface thread, how fast it
// closes, how fast it shows a device.

namespace benchmarks {

/// The largest gap of a heartbeat of a millisecond, beside that of an empty window with which it takes turns; on the
/// clock, and in processor time of the thread, in which those who share the machine do not show.
void MeasureHeartbeat();
/// The time of closing at moments all over a round, beside that of a plain dialog.
void MeasureClosing();
/// The time from opening to the first device in the tree, with an independent camera at the other end of a virtual
/// cable, beside the first answer at a bare socket, the least that it can be, and beside Aravis' list, which waits a
/// fixed time for answers. Installs the transport of real devices for good.
void MeasureFirstDevice();

} // namespace benchmarks
