// Whatever may stand in a configuration file: a document is read as a whole, or refused with the place and what was
// read before left alone; and what was read keeps to the limits and is the same again after it was written and read
// once more.

#include "configurationparser.h"
#include "configurationtext.h"
#include "require.h"

#include <cstdint>
#include <string>

namespace {

using krpersistence::Configuration;

// A fragment that is refused is refused at a place in it.
void CheckRefusal(const KrResult& aResult) {
  Require(aResult == KrResult::Code::BadData || aResult == KrResult::Code::NotSupported ||
          aResult == KrResult::Code::OutOfRange);
  Require(aResult.GetDescription().ToUtf8().starts_with("line "));
}

void CheckLimits(const Configuration& aRead) {
  Require(aRead.size() <= krpersistence::kMostLists);
  for (const auto& [name, properties] : aRead)
    Require(!name.IsEmpty() && properties.GetCount() <= krpersistence::kMostProperties);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const Configuration before = {{"before", {}}};
  Configuration read = before;
  const KrResult result = krpersistence::ParseConfiguration({reinterpret_cast<const char*>(aData), aSize}, read);
  if (!result.IsOK()) {
    CheckRefusal(result);
    Require(read == before);
    return 0;
  }
  CheckLimits(read);

  std::string text;
  Configuration again;
  Require(krpersistence::WriteConfigurationText(read, text).IsOK());
  Require(krpersistence::ParseConfiguration(text, again).IsOK());
  Require(again == read);
  return 0;
}
