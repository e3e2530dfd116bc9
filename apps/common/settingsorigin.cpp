#include "settingsorigin.h"

#include "plaintext.h"

namespace krapps {

std::string DescribeOtherModel(const KrGenSettings& aSettings, const KrGenParameterArray& aArray) {
  // As a file would have it, which holds one line of it.
  KrGenSettings present;
  present.SetDevice(aArray.GetVendorName() + " " + aArray.GetModelName());
  if (!present.FromText(present.ToText()).IsOK() || aSettings.GetDevice().IsEmpty() ||
      aSettings.GetDevice() == present.GetDevice())
    return {};
  return "The settings are those of another model: of \"" + MakeField(aSettings.GetDevice()) + "\"; the device is \"" +
         MakeField(present.GetDevice()) + "\".";
}

} // namespace krapps
