// Whatever a device may call itself, and whatever a line may bring: as text that is shown, printed, written into a file
// or made a name of, it is well-formed, and obeyed by nobody.

#include "clname.h"
#include "jsonwriter.h"
#include "logic/serial/showntext.h"
#include "plaintext.h"
#include "recording/filenames.h"
#include "require.h"

#include "krbase/krclwire.h"
#include "krbase/krstring.h"
#include "krbase/utf8cut.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

bool IsControl(char16_t aUnit) {
  return aUnit < 0x20 || (aUnit >= 0x7F && aUnit < 0xA0);
}

// What was read as UTF-16 is written as UTF-8 that reads the same.
void CheckConversion(const KrString& aText) {
  const std::u16string wide = aText.ToWide();
  const KrString clean(wide);
  Require(clean.ToWide() == wide);
  Require(KrString(clean.ToWide()) == clean && wide.size() <= aText.GetLength());
}

void CheckCut(std::string_view aText, std::size_t aMost) {
  const std::string_view cut = krbase::CutUtf8(aText, aMost);
  Require(cut.size() <= aMost && aText.starts_with(cut));
  // What was well-formed is so still.
  const KrString whole(aText);
  if (KrString(whole.ToWide()) == whole)
    Require(KrString(KrString(cut).ToWide()) == KrString(cut));
}

void CheckPrinted(const KrString& aText) {
  for (const std::string& printed : {krapps::MakeCell(aText), krapps::MakeField(aText)})
    Require(std::ranges::none_of(KrString(printed).ToWide(), IsControl));
  const std::string cell = krapps::MakeCell(aText);
  Require(!cell.empty() && krapps::MakeCell(cell) == cell);
}

// Between the quotes stands nothing that ends the text, and nothing beyond ASCII.
void CheckJson(const KrString& aText) {
  const std::string quoted = krtool::QuoteJson(aText);
  Require(quoted.size() >= 2 && quoted.front() == '"' && quoted.back() == '"');
  const std::string_view inside = std::string_view(quoted).substr(1, quoted.size() - 2);
  for (std::size_t i = 0; i < inside.size(); ++i) {
    Require(inside[i] >= 0x20 && inside[i] < 0x7F && inside[i] != '"');
    if (inside[i] != '\\')
      continue;
    const bool isUnit = inside.substr(i).starts_with("\\u");
    Require(isUnit ? inside.size() - i >= 6 : inside.size() - i >= 2);
    i += isUnit ? 5 : 1;
  }
}

void CheckNames(const std::string& aText) {
  const std::string file = krviewer::MakePlainName(aText);
  Require(!file.empty() && file.size() <= 60 && file.front() != '.' && file.front() != '-');
  Require(file.find_first_of("/\\ \n") == file.npos && krviewer::MakePlainName(file) == file);

  const std::string port = krbase::CleanCLName(aText);
  Require(port.size() <= kKrCLMostName && port.find_first_of("#\n") == port.npos);
  const std::string other = krbase::MakeUniqueCLName(port, {port, port + " (2)"});
  Require(other != port && other.size() <= kKrCLMostName);
}

void CheckShown(const std::u16string& aText) {
  const std::u16string shown = krgui::MakeShownText(aText);
  Require(shown.size() == krgui::CountShownUnits(aText));
  Require(
      std::ranges::none_of(shown, [](char16_t aUnit) { return IsControl(aUnit) && aUnit != u'\n' && aUnit != u'\t'; }));
  Require(krgui::MakeShownText(shown) == shown);
  // Each place that is shown stands for one of the text, in the same order.
  std::size_t least = 0;
  for (std::size_t place = 0; place < shown.size(); ++place) {
    const std::size_t unit = krgui::FindUnit(aText, place);
    Require(unit >= least && unit < aText.size() && aText[unit] != u'\r');
    least = unit + 1;
  }
  Require(krgui::FindUnit(aText, shown.size()) == aText.size());
  Require(krgui::MakeForeignText(aText).find_first_of(std::u16string_view(u"\r\0", 2)) == std::u16string::npos);
}

} // namespace

// The first byte says where the text is cut.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  constexpr std::size_t kMostBytes = 4096; // Longer ones show the same.
  if (aSize == 0 || aSize > kMostBytes)
    return 0;
  const std::string_view text(reinterpret_cast<const char*>(aData) + 1, aSize - 1);
  CheckConversion(text);
  CheckCut(text, aData[0]);
  CheckPrinted(text);
  CheckJson(text);
  CheckNames(std::string(text));
  CheckShown(KrString(text).ToWide());
  // The same bytes as UTF-16, with halves of characters among them.
  std::u16string wide;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2)
    wide += static_cast<char16_t>(static_cast<std::uint8_t>(text[i]) << 8 | static_cast<std::uint8_t>(text[i + 1]));
  CheckShown(wide);
  CheckConversion(std::u16string_view(wide));
  return 0;
}
