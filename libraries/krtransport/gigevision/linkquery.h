#pragma once
// What a link's driver says of it when it is asked (ioctl): its name, its speed, the largest packet. These calls answer
// for the network namespace of who asks, which the files under /sys do not.

#include <cstdint>
#include <string>

namespace krtransport {

/// The name of the driver of an adapter; empty where the kernel does not say. Any thread.
std::string GetDriverName(const std::string& aAdapterName);
/// The largest IP packet that the adapter takes, in bytes; 1500 where the kernel does not say. Any thread.
std::uint32_t GetMtu(const std::string& aAdapterName);
/// The speed that the adapter's link has at the moment, in bits per second; 0 where the kernel does not say. Any
/// thread.
std::uint64_t GetLinkSpeed(const std::string& aAdapterName);
/// Whether packets can be taken past the kernel's stack, which wants a right. Any thread.
bool MayUsePacketSockets();

} // namespace krtransport
