#pragma once
// By which adapter the kernel sends what goes to an address: its routing table chooses, whichever adapter the address
// is looked for on. What follows from it is left to those who ask.

#include <cstdint>
#include <string>

namespace krtransport {

/// The name of the adapter by which the kernel would send from one of this host's addresses to another address now;
/// empty where it knows no way or does not say. An address of this host is reached by the loopback adapter. Any thread.
std::string FindRouteAdapter(std::uint32_t aLocalAddress, std::uint32_t aAddress);

} // namespace krtransport
