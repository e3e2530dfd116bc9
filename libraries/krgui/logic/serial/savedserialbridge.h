#pragma once
// The bridge of one serial port as it stands in a property list beside those of the other ports. What is done with it
// is left to SerialBridge and SerialBridgeList.

#include "krbase/krresult.h"
#include "krpersistence/krpropertylist.h"
#include "krserial/krdeviceserial.h"
#include "krserial/krserialportconfiguration.h"
#include "logic/serial/bridgekind.h"

#include <cstdint>
#include <optional>

namespace krgui {

// Thread: any. What the list has of other ports is passed over.

/// The kind that a word stands for; None for any other text.
BridgeKind FindSavedKind(const KrString& aWord);
/// The word that stands for a kind; the empty text for None.
KrString GetSavedWord(BridgeKind aKind);

/// The property that names the host's port; null without one. Valid until the list is changed.
const KrProperty* FindSavedCOMPort(const KrPropertyList& aProperties, KrDeviceSerial aPort);
/// Reads how the host's port is set; what is not there stays as it is. BadData, with a sentence for the first value
/// that cannot be read, or for values with which no port could be set; aConfiguration is then unchanged.
KrResult RestoreConfiguration(const KrPropertyList& aProperties, KrDeviceSerial aPort,
                              KrSerialPortConfiguration& aConfiguration);
/// Adds the host's port and how it is set.
void StoreCOMPort(const KrString& aCOMPort, const KrSerialPortConfiguration& aConfiguration, KrDeviceSerial aPort,
                  KrPropertyList& aProperties);

/// Reads the rate of a published port, which need not be there. BadData, with a sentence, for one that cannot be read;
/// aBaudRate is then unchanged.
KrResult RestoreHardCodedBaudRate(const KrPropertyList& aProperties, KrDeviceSerial aPort,
                                  std::optional<std::uint32_t>& aBaudRate);
/// Adds the rate of a published port.
void StoreHardCodedBaudRate(std::uint32_t aBaudRate, KrDeviceSerial aPort, KrPropertyList& aProperties);

} // namespace krgui
