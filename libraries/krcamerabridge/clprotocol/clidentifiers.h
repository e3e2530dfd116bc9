#pragma once
// The names of CL Protocol cameras, of templates for them, and of their descriptions. Who gives them is left to
// drivers.

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace krcamerabridge {

/// A camera's full identifier, or a template for one, "Directory#FileName#Manufacturer#Family…".
struct CLFullID {
  std::string directory;
  std::string fileName;
  std::string shortID; ///< From the manufacturer on: the form that drivers know.
};

/// The parts of a full identifier; nothing for what is none. Thread: any.
std::optional<CLFullID> ParseCLFullID(std::string_view aText);
/// The full form. Thread: any.
std::string MakeCLFullID(const CLFullID& aID);

/// Whether a short identifier of a camera, or template, can be one: one to five names, none empty. Thread: any.
bool IsCLShortID(std::string_view aText);
/// Whether a short identifier begins with all names of a template. Thread: any.
bool MatchesCLTemplate(std::string_view aShortID, std::string_view aTemplate);

/// "SchemaVersion.<major>.<minor>@<short identifier or template>@XMLVersion.<major>.<minor>.<sub>".
struct CLXMLID {
  std::uint32_t schemaMajor = 0;
  std::uint32_t schemaMinor = 0;
  std::string device;
  std::uint32_t versions[3] = {};
};

/// Nothing for what is none. Thread: any.
std::optional<CLXMLID> ParseCLXMLID(std::string_view aText);
/// Of the identifiers of descriptions, those for a camera whose schema is known, each once, the best first: of the
/// newest schema, then for the camera most exactly, then of the newest version. Thread: any.
std::vector<std::string> SelectCLXMLIDs(const std::vector<std::string>& aXMLIDs, std::string_view aShortID);

/// The texts of a list that a driver gives, parted by TAB, up to a terminating zero; a thousand at most. Thread: any.
std::vector<std::string> SplitCLList(std::string_view aText);
/// A driver's text in one line, for people: up to a terminating zero and of a thousand bytes at most, with blanks for
/// control characters. Thread: any.
std::string MakeCLWords(std::string_view aText);

} // namespace krcamerabridge
