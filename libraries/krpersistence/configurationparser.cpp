#include "configurationparser.h"

#include "textescape.h"
#include "textlocation.h"
#include "utf8sequence.h"

#include <pugixml.hpp>

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <system_error>

namespace krpersistence {

namespace {

// Values are taken as they stand in the file, so that every reference and escape in them is checked here, and what does
// not belong into a configuration is kept in the tree, so that it can be refused.
constexpr unsigned kOptions = pugi::parse_fragment | pugi::parse_declaration | pugi::parse_doctype | pugi::parse_cdata;

struct Version {
  unsigned major = 0;
  unsigned minor = 0;
};

std::optional<Version> ReadVersion(std::string_view aText) {
  Version version;
  const char* const end = aText.data() + aText.size();
  const auto major = std::from_chars(aText.data(), end, version.major);
  if (major.ec != std::errc() || major.ptr == end || *major.ptr != '.')
    return std::nullopt;
  const auto minor = std::from_chars(major.ptr + 1, end, version.minor);
  return minor.ec == std::errc() && minor.ptr == end ? std::optional(version) : std::nullopt;
}

bool IsText(const pugi::xml_node& aNode) {
  return aNode.type() == pugi::node_pcdata || aNode.type() == pugi::node_cdata;
}

bool EqualsIgnoringCase(std::string_view aText, std::string_view aLowerCase) {
  return std::equal(aText.begin(), aText.end(), aLowerCase.begin(), aLowerCase.end(), [](char aLeft, char aRight) {
    return (aLeft >= 'A' && aLeft <= 'Z' ? aLeft + ('a' - 'A') : aLeft) == aRight;
  });
}

// Goes through one document from the outside in.
class Parser {
public:
  explicit Parser(std::string_view aBytes) : mBytes(aBytes), mParsed(aBytes) {}

  KrResult Run(Configuration& aConfiguration);

private:
  KrResult CheckCharacters() const;
  KrResult CheckMarkup() const;
  KrResult BuildTree();
  KrResult CheckDeclaration(const pugi::xml_node& aDeclaration) const;
  KrResult FindRoot(pugi::xml_node& aRoot) const;
  KrResult CheckVersion(const pugi::xml_node& aRoot) const;
  KrResult ReadLists(const pugi::xml_node& aRoot, Configuration& aConfiguration) const;
  KrResult ReadProperties(const pugi::xml_node& aList, KrPropertyList& aProperties) const;
  KrResult ReadText(const pugi::xml_node& aNode, const char* aAttribute, KrString& aText) const;
  KrResult RefuseText(const pugi::xml_node& aNode) const;

  std::size_t GetOffset(const pugi::xml_node& aNode) const;
  KrResult Fail(std::size_t aOffset, const std::string& aReason, KrResult::Code aCode = KrResult::Code::BadData) const {
    return {aCode, DescribeLocation(mBytes, aOffset) + ": " + aReason + "."};
  }
  KrResult FailAt(const pugi::xml_node& aNode, const std::string& aReason,
                  KrResult::Code aCode = KrResult::Code::BadData) const {
    return Fail(GetOffset(aNode), aReason, aCode);
  }

  std::string_view mBytes;
  std::string mParsed; // The same bytes, which the tree points into and puts zeros between.
  pugi::xml_document mDocument;
};

// The tree knows where an element's name, or a text with the blanks before it, begins.
std::size_t Parser::GetOffset(const pugi::xml_node& aNode) const {
  const auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(aNode.offset_debug(), 0));
  if (IsText(aNode))
    return std::min(mBytes.find_first_not_of(" \t\r\n", offset), mBytes.size());
  return std::min(mBytes.rfind('<', offset), offset);
}

KrResult Parser::CheckCharacters() const {
  for (std::size_t offset = 0; offset < mBytes.size();) {
    const Utf8Sequence sequence = IsPrintable(mBytes[offset]) ? Utf8Sequence{' ', 1} : ReadUtf8(mBytes.substr(offset));
    if (sequence.length == 0)
      return Fail(offset, "these bytes are no UTF-8");
    if (!IsXmlCharacter(sequence.point))
      return Fail(offset, "a character that XML does not allow");
    offset += sequence.length;
  }
  return {};
}

// Before there is a tree, which takes many times the memory of what it is made from.
KrResult Parser::CheckMarkup() const {
  std::size_t count = 0;
  for (std::size_t offset = mBytes.find('<'); offset != mBytes.npos; offset = mBytes.find('<', offset + 1))
    if (++count > kMostMarkup)
      return Fail(offset, "more than the limit of " + std::to_string(kMostMarkup) + " elements and other markup",
                  KrResult::Code::OutOfRange);
  return {};
}

KrResult Parser::BuildTree() {
  const pugi::xml_parse_result parsed =
      mDocument.load_buffer_inplace(mParsed.data(), mParsed.size(), kOptions, pugi::encoding_utf8);
  if (parsed)
    return {};
  if (parsed.status == pugi::status_out_of_memory)
    return {KrResult::Code::SystemError, "there is not enough memory for it."};
  return Fail(static_cast<std::size_t>(std::max<std::ptrdiff_t>(parsed.offset, 0)), parsed.description());
}

KrResult Parser::CheckDeclaration(const pugi::xml_node& aDeclaration) const {
  if (aDeclaration.previous_sibling())
    return FailAt(aDeclaration, "an XML declaration must come first");
  const pugi::xml_attribute encoding = aDeclaration.attribute("encoding");
  if (encoding && !EqualsIgnoringCase(encoding.value(), "utf-8"))
    return FailAt(aDeclaration, "the encoding must be UTF-8");
  return {};
}

KrResult Parser::FindRoot(pugi::xml_node& aRoot) const {
  for (const pugi::xml_node& node : mDocument.children()) {
    if (node.type() == pugi::node_doctype)
      return FailAt(node, "a document type is not accepted");
    if (IsText(node))
      return FailAt(node, "text outside of the document's element");
    if (node.type() == pugi::node_declaration) {
      if (KrResult checked = CheckDeclaration(node); !checked.IsOK())
        return checked;
    } else if (aRoot) {
      return FailAt(node, "a second document begins");
    } else {
      aRoot = node;
    }
  }
  if (!aRoot)
    return Fail(mBytes.size(), "the file ends before the element <configuration>");
  return std::string_view(aRoot.name()) == "configuration"
             ? KrResult()
             : FailAt(aRoot, "this is no configuration; the element <configuration> was expected");
}

KrResult Parser::CheckVersion(const pugi::xml_node& aRoot) const {
  KrString text;
  if (KrResult read = ReadText(aRoot, "version", text); !read.IsOK())
    return read;
  const std::optional<Version> version = ReadVersion(text.ToUtf8());
  if (!version || version->major == 0)
    return FailAt(aRoot, "the version must be two numbers with a point between them, such as 1.0");
  if (version->major != kMajorVersion)
    return FailAt(aRoot,
                  "the file is of format version " + text.ToUtf8() + "; it needs a library that reads version " +
                      std::to_string(version->major) + ", and this one reads version " + std::to_string(kMajorVersion),
                  KrResult::Code::NotSupported);
  return {};
}

KrResult Parser::ReadText(const pugi::xml_node& aNode, const char* aAttribute, KrString& aText) const {
  const std::string name = aAttribute;
  pugi::xml_attribute found;
  for (const pugi::xml_attribute& attribute : aNode.attributes()) {
    if (attribute.name() != name)
      continue;
    if (found)
      return FailAt(aNode, "the attribute " + name + " is there twice");
    found = attribute;
  }
  if (!found)
    return FailAt(aNode, "the attribute " + name + " is missing");

  std::string reason;
  const std::optional<std::string> text = UnescapeText(found.value(), reason);
  const std::ptrdiff_t offset = found.value() - mParsed.data();
  if (!text)
    return Fail(static_cast<std::size_t>(offset), "in the attribute " + name + " " + reason);
  if (text->size() > kMostTextBytes)
    return Fail(static_cast<std::size_t>(offset),
                "the attribute " + name + " is longer than the limit of " + std::to_string(kMostTextBytes) + " bytes",
                KrResult::Code::OutOfRange);
  aText = *text;
  return {};
}

KrResult Parser::RefuseText(const pugi::xml_node& aNode) const {
  return FailAt(aNode, std::string("text in the element <") + aNode.parent().name() + ">");
}

KrResult Parser::ReadProperties(const pugi::xml_node& aList, KrPropertyList& aProperties) const {
  for (const pugi::xml_node& node : aList.children()) {
    if (IsText(node))
      return RefuseText(node);
    if (std::string_view(node.name()) != "property")
      continue;
    if (aProperties.GetCount() == kMostProperties)
      return FailAt(node, "more than the limit of " + std::to_string(kMostProperties) + " properties in a list",
                    KrResult::Code::OutOfRange);
    KrString name;
    KrString value;
    if (KrResult read = ReadText(node, "name", name); !read.IsOK())
      return read;
    if (KrResult read = ReadText(node, "value", value); !read.IsOK())
      return read;
    aProperties.Add({name, value});
  }
  return {};
}

KrResult Parser::ReadLists(const pugi::xml_node& aRoot, Configuration& aConfiguration) const {
  for (const pugi::xml_node& node : aRoot.children()) {
    if (IsText(node))
      return RefuseText(node);
    if (std::string_view(node.name()) != "list")
      continue;
    if (aConfiguration.size() == kMostLists)
      return FailAt(node, "more than the limit of " + std::to_string(kMostLists) + " lists",
                    KrResult::Code::OutOfRange);
    KrString name;
    if (KrResult read = ReadText(node, "name", name); !read.IsOK())
      return read;
    if (name.IsEmpty())
      return FailAt(node, "the name of a list is empty");
    if (FindList(aConfiguration, name) != aConfiguration.end())
      return FailAt(node, "a list of this name is there already");
    aConfiguration.emplace_back(name, KrPropertyList());
    if (KrResult read = ReadProperties(node, aConfiguration.back().second); !read.IsOK())
      return read;
  }
  return {};
}

KrResult Parser::Run(Configuration& aConfiguration) {
  if (KrResult checked = CheckCharacters(); !checked.IsOK())
    return checked;
  if (KrResult checked = CheckMarkup(); !checked.IsOK())
    return checked;
  if (KrResult built = BuildTree(); !built.IsOK())
    return built;
  pugi::xml_node root;
  if (KrResult found = FindRoot(root); !found.IsOK())
    return found;
  if (KrResult checked = CheckVersion(root); !checked.IsOK())
    return checked;
  Configuration read;
  if (KrResult result = ReadLists(root, read); !result.IsOK())
    return result;
  aConfiguration = std::move(read);
  return {};
}

} // namespace

KrResult ParseConfiguration(std::string_view aBytes, Configuration& aConfiguration) {
  if (aBytes.size() > kMostFileBytes)
    return {KrResult::Code::OutOfRange, "it is longer than the limit of " + std::to_string(kMostFileBytes) + " bytes."};
  return Parser(aBytes).Run(aConfiguration);
}

} // namespace krpersistence
