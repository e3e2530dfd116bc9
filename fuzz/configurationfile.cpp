// Whatever may stand in a configuration file: a document is read as a whole or refused, and what was read is the same
// again after it was written and read once more.

#include "configurationparser.h"
#include "configurationtext.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krpersistence::Configuration read;
  if (!krpersistence::ParseConfiguration({reinterpret_cast<const char*>(aData), aSize}, read).IsOK())
    return 0;

  std::string text;
  krpersistence::Configuration again;
  const bool isWritten = krpersistence::WriteConfigurationText(read, text).IsOK();
  if (!isWritten || !krpersistence::ParseConfiguration(text, again).IsOK() || again != read)
    std::abort();
  return 0;
}
