#pragma once
// Small pieces of the sentences in which findings are told. What is found is left to the causes.

#include "krsystem/discoverydiagnosis.h"

#include <string>

namespace krsystem {

/// Whether a name can stand in a command as it is: letters, digits and . _ - : @ alone, and no option.
bool IsPlainWord(const KrString& aName);
/// The command on a line of its own behind a remedy; nothing for a name that a shell might take for more than a name.
std::string AppendCommand(const KrString& aName, const std::string& aCommand);
/// An adapter's name, or its unique ID where it has none.
const KrString& GetName(const AdapterReading& aAdapter);
/// A device's text for lists, or its unique ID where it has none.
const KrString& GetName(const AnyDeviceFields& aDevice);
/// The reading of the adapter on which a device answered, by its unique ID or else by its name; or null.
const AdapterReading* FindAdapter(const HostReadings& aReadings, const AnsweredDevice& aAnswered);
/// The adapter's first address that is one, or null.
const AdapterAddress* FindAddress(const AdapterReading& aAdapter);

} // namespace krsystem
