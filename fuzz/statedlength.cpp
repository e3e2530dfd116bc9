// A camera's URL of its description, which is judged before Aravis takes memory by it: whatever length the URL is read
// to have, the length that is judged is no less.

#include "gigevision/statedlength.h"
#include "description/descriptionurl.h"
#include "require.h"

#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::string_view url(reinterpret_cast<const char*>(aData), aSize);
  krgenicam::RegisterRange range;
  const bool isRead = krgenicam::ParseDescriptionUrl(url, range).IsOK();
  Require(!isRead || krtransport::GetStatedLength(url) >= range.length);
  return 0;
}
