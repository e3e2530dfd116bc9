#include "description/description.h"

#include "description/descriptionreader.h"
#include "description/linetable.h"
#include "description/rootelement.h"

#include <pugixml.hpp>

#include <algorithm>
#include <utility>

namespace krgenicam {

namespace {

// Each tag and each attribute takes some sixty bytes once parsed, however short it is.
constexpr std::ptrdiff_t kMostTags = std::ptrdiff_t{1} << 22;

constexpr unsigned kOptions =
    pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_wconv_attribute | pugi::parse_embed_pcdata;

KrResult Refuse(const KrString& aOrigin, const std::string& aReason) {
  return {KrResult::Code::BadData, "The camera description " +
                                       (aOrigin.IsEmpty() ? std::string() : aOrigin.ToUtf8() + " ") +
                                       "cannot be used: " + aReason};
}

} // namespace

Description::Description() = default;
Description::~Description() = default;
Description::Description(Description&&) noexcept = default;
Description& Description::operator=(Description&&) noexcept = default;

KrResult Description::Read(const KrGenDescription& aText, Description& aDescription) {
  const std::string_view text = aText.GetText();
  const KrString& origin = aText.GetOrigin();
  if (text.size() > KrGenDescription::kMaxBytes || std::ranges::count(text, '<') > kMostTags ||
      std::ranges::count(text, '=') > kMostTags)
    return Refuse(origin, "it is larger than what any camera should need.");

  Description description;
  description.mDocument = std::make_unique<Document>(Document{std::string(text), {}});
  std::string& parsedText = description.mDocument->text;
  const LineTable lines(text);
  // The tree is needed while reading alone; names and texts stay where the parser has put them, in the text.
  pugi::xml_document tree;
  const pugi::xml_parse_result parsed =
      tree.load_buffer_inplace(parsedText.data(), parsedText.size(), kOptions, pugi::encoding_utf8);
  if (!parsed)
    return Refuse(origin, "it is no XML, or not all of it: " +
                              lines.Describe(static_cast<std::size_t>(std::max<std::ptrdiff_t>(parsed.offset, 0))) +
                              ": " + parsed.description() + ".");
  RootElement root;
  if (KrResult result = FindRootElement(tree, root); !result.IsOK())
    return Refuse(origin, lines.Describe(static_cast<std::size_t>(
                              std::max<std::ptrdiff_t>(tree.document_element().offset_debug(), 0))) +
                              ": " + result.GetDescription().ToUtf8());
  description.mVendorName = root.vendorName;
  description.mModelName = root.modelName;
  description.mSchemaMinorVersion = root.schemaMinorVersion;
  description.mStandardNameSpace = root.standardNameSpace;
  description.mVersion = root.version;
  DescriptionReader(description, lines).ReadNodes(root.element);
  aDescription = std::move(description);
  return {};
}

NodeIndex Description::Find(std::string_view aName) const {
  const auto found = mNames.find(aName);
  return found == mNames.end() ? kNoNode : found->second;
}

} // namespace krgenicam
