#include "krserial/krserialportconfiguration.h"

bool KrSerialPortConfiguration::IsValid() const {
  return baudRate >= 50 && baudRate <= 4'000'000 && parity <= 2 && byteSize >= 5 && byteSize <= 8 && stopBits >= 1 &&
         stopBits <= 2;
}
