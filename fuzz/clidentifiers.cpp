// What CL Protocol drivers say of cameras and descriptions may be any bytes: what is taken for an identifier is one,
// and lists and words keep to their limits.

#include "clprotocol/clidentifiers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  using namespace krcamerabridge;
  const std::string_view text(reinterpret_cast<const char*>(aData), aSize);
  const std::optional<CLFullID> id = ParseCLFullID(text);
  if (id && (MakeCLFullID(*id) != text || !IsCLShortID(id->shortID)))
    std::abort();
  const std::string words = MakeCLWords(text);
  if (words.size() > 1000 || words.find('\n') != std::string::npos)
    std::abort();

  // The first text of a list is the camera, the others its descriptions.
  const std::vector<std::string> list = SplitCLList(text);
  if (list.size() > 1000)
    std::abort();
  if (list.empty())
    return 0;
  const std::vector<std::string> selected = SelectCLXMLIDs(list, list.front());
  const bool areKnown = std::ranges::all_of(selected, [&](const std::string& aXMLID) {
    const std::optional<CLXMLID> xmlID = ParseCLXMLID(aXMLID);
    return xmlID && MatchesCLTemplate(list.front(), xmlID->device);
  });
  if (!areKnown || selected.size() > list.size())
    std::abort();
  return 0;
}
