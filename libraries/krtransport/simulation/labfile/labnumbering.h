#pragma once
// Makes many devices of one entry of a lab file, each with numbers of its own.

#include "simulation/labfile/labdevicereader.h"

namespace krtransport {

/// A text counted up by aSteps: its last digits are, keeping their width where they can; a text without any gets the
/// number after them, from 1 on. An empty text stays empty. Any thread.
KrString CountUp(const KrString& aText, std::uint32_t aSteps);

/// Adds a device as often as said, with its ID, addresses, serial number and user-defined name counted up. One whose
/// texts outgrow their registers, or whose addresses end, is a problem. Any thread.
void AddCounted(const ReadLabDevice& aDevice, std::uint32_t aCount, LabProblem& aProblem,
                std::vector<ReadLabDevice>& aDevices);

} // namespace krtransport
