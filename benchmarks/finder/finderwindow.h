#pragma once
// How the finder's window behaves while discovery runs: how long it keeps the user-interface thread, how fast it
// closes, how fast it shows a device.

namespace benchmarks {

/// The largest gap of a heartbeat of a millisecond, beside that of an empty window; on the clock, and in processor time
/// of the thread, in which those who share the machine do not show.
bool MeasureHeartbeat();
/// The time of closing at moments all over a round, beside that of a plain dialog.
bool MeasureClosing();
/// The time from opening to the first device in the tree, beside that of Aravis' list, with an independent camera at
/// the other end of a virtual cable. Installs the transport of real devices for good.
bool MeasureFirstDevice();

} // namespace benchmarks
