#include "map/documentationurl.h"

#include <optional>

namespace krgenicam {

namespace {

std::optional<std::string> FindValue(std::string_view aPlaceholder, std::string_view aNodeName,
                                     const Description& aDescription) {
  if (aPlaceholder == "NAME" || aPlaceholder == "Sys::NodeName")
    return std::string(aNodeName);
  if (aPlaceholder == "Sys::ModelName")
    return std::string(aDescription.GetModelName());
  if (aPlaceholder == "Sys::VendorName")
    return std::string(aDescription.GetVendorName());
  if (aPlaceholder == "Sys::StandardNamespace")
    return std::string(aDescription.GetStandardNameSpace());
  if (aPlaceholder == "Sys::DeviceVersion")
    return aDescription.GetVersion();
  if (aPlaceholder == "Sys::SchemaVersion")
    return "1." + std::to_string(aDescription.GetSchemaMinorVersion());
  return std::nullopt;
}

} // namespace

std::string CompleteDocumentationURL(std::string_view aURL, std::string_view aNodeName,
                                     const Description& aDescription) {
  constexpr std::string_view kOpening = "$(";
  constexpr std::size_t kLongestPlaceholder = 32;
  if (aURL.size() > kMaxDocumentationURL)
    return std::string(aURL);
  std::string url;
  std::string_view rest = aURL;
  for (std::size_t opening = rest.find(kOpening);
       opening != std::string_view::npos && url.size() <= kMaxDocumentationURL; opening = rest.find(kOpening)) {
    url.append(rest.substr(0, opening));
    rest.remove_prefix(opening + kOpening.size());
    const std::size_t closing = rest.substr(0, kLongestPlaceholder).find(')');
    const bool isClosed = closing != std::string_view::npos;
    const auto value = isClosed ? FindValue(rest.substr(0, closing), aNodeName, aDescription) : std::nullopt;
    url.append(value ? std::string_view(*value) : kOpening);
    // What is unknown is gone through, as it may hold the beginning of what is known.
    rest.remove_prefix(value ? closing + 1 : 0);
  }
  url.append(rest);
  return url.size() <= kMaxDocumentationURL ? url : std::string(aURL);
}

} // namespace krgenicam
