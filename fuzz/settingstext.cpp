// Whatever may stand in a settings file: it is read as a whole, or refused with the line and what was read before left
// alone; and what was read is the same again after it was written and read once more.

#include "krgenicam/krgensettings.h"
#include "require.h"

#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  KrGenSettings read;
  read.Add("Before", "1");
  read.SetDevice("The device of before");
  const std::vector<KrGenSetting> before = read.GetSettings();
  const KrResult result = read.FromText({reinterpret_cast<const char*>(aData), aSize});
  if (!result.IsOK()) {
    Require(result == KrResult::Code::BadData && result.GetDescription().ToUtf8().starts_with("Line "));
    Require(read.GetSettings() == before && read.GetDevice() == "The device of before");
    return 0;
  }

  KrGenSettings again;
  Require(again.FromText(read.ToText()).IsOK());
  Require(again.GetSettings() == read.GetSettings());
  return 0;
}
