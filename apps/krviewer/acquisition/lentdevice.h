#pragma once
// A camera as it is lent to windows: the device, and the stream that runs on it.

class IKrDeviceAdapter;
class KrStream;

namespace krviewer {

/// Ownership: borrows both, which outlive it.
struct LentDevice {
  IKrDeviceAdapter& adapter;
  KrStream* stream = nullptr; ///< Null where nothing streams.
};

} // namespace krviewer
