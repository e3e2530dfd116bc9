// What CL Protocol drivers say of cameras and descriptions may be any bytes: what is taken for an identifier is one,
// and lists and words keep to their limits.

#include "clprotocol/clidentifiers.h"
#include "require.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  using namespace krcamerabridge;
  const std::string_view text(reinterpret_cast<const char*>(aData), aSize);
  const std::optional<CLFullID> id = ParseCLFullID(text);
  Require(!id || (MakeCLFullID(*id) == text && IsCLShortID(id->shortID)));
  const std::string words = MakeCLWords(text);
  Require(words.size() <= 1000 && words.find('\n') == std::string::npos);

  // The first text of a list is the camera, the others its descriptions.
  const std::vector<std::string> list = SplitCLList(text);
  Require(list.size() <= 1000);
  if (list.empty())
    return 0;
  const std::vector<std::string> selected = SelectCLXMLIDs(list, list.front());
  Require(selected.size() <= list.size());
  for (const std::string& name : selected) {
    const std::optional<CLXMLID> xmlID = ParseCLXMLID(name);
    Require(xmlID && MatchesCLTemplate(list.front(), xmlID->device));
  }
  return 0;
}
