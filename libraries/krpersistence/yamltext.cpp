#include "krpersistence/yamltext.h"

#include "utf8sequence.h"

#include <algorithm>
#include <exception>
#include <istream>
#include <map>
#include <optional>
#include <set>
#include <streambuf>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

namespace krpersistence {

namespace {

TextPlace GetPlace(const YAML::Mark& aMark) {
  if (aMark.is_null())
    return {};
  return {static_cast<std::size_t>(aMark.line) + 1, static_cast<std::size_t>(aMark.column) + 1};
}

// Where the first byte stands that is no UTF-8; nothing where all is.
std::optional<std::size_t> FindInvalidUtf8(std::string_view aText) {
  for (std::size_t at = 0; at < aText.size();) {
    const std::size_t length = ReadUtf8(aText.substr(at)).length;
    if (length == 0)
      return at;
    at += length;
  }
  return std::nullopt;
}

std::size_t CountNodes(const YamlNode& aNode) {
  std::size_t count = 1;
  for (const YamlNode& item : aNode.items)
    count += CountNodes(item);
  return count;
}

std::size_t GetDepth(const YamlNode& aNode) {
  std::size_t depth = 0;
  for (const YamlNode& item : aNode.items)
    depth = std::max(depth, GetDepth(item));
  return depth + 1;
}

// Builds the tree from the parser's events. What is refused ends the parser by its own exception.
class TreeBuilder final : public YAML::EventHandler {
public:
  YamlNode TakeRoot() { return std::move(mRoot); }

  void OnDocumentStart(const YAML::Mark& aMark) override {
    if (mHasDocument)
      Refuse(aMark, "a second document begins; there may be one");
    mHasDocument = true;
  }
  void OnDocumentEnd() override {}
  void OnNull(const YAML::Mark& aMark, YAML::anchor_t aAnchor) override {
    Add(aMark, aAnchor, {.kind = YamlKind::Null, .place = GetPlace(aMark), .text = {}, .items = {}, .keys = {}});
  }
  void OnScalar(const YAML::Mark& aMark, const std::string&, YAML::anchor_t aAnchor,
                const std::string& aValue) override {
    if (FindInvalidUtf8(aValue) || aValue.find('\0') != std::string::npos)
      Refuse(aMark, "the text is no valid UTF-8, or has a zero in it");
    Add(aMark, aAnchor, {.kind = YamlKind::Scalar, .place = GetPlace(aMark), .text = aValue, .items = {}, .keys = {}});
  }
  void OnAlias(const YAML::Mark& aMark, YAML::anchor_t aAnchor) override {
    const auto anchored = mAnchored.find(aAnchor);
    if (anchored == mAnchored.end())
      Refuse(aMark, "an alias within the value that it stands for");
    YamlNode copy = anchored->second;
    if (mOpen.size() + GetDepth(copy) > kMostYamlDepth)
      Refuse(aMark, "the alias nests too deeply");
    Count(aMark, CountNodes(copy));
    Place(aMark, std::move(copy));
  }
  void OnSequenceStart(const YAML::Mark& aMark, const std::string&, YAML::anchor_t aAnchor,
                       YAML::EmitterStyle::value) override {
    Open(aMark, aAnchor, YamlKind::Sequence);
  }
  void OnSequenceEnd() override { Close(); }
  void OnMapStart(const YAML::Mark& aMark, const std::string&, YAML::anchor_t aAnchor,
                  YAML::EmitterStyle::value) override {
    Open(aMark, aAnchor, YamlKind::Map);
  }
  void OnMapEnd() override { Close(); }

private:
  // A sequence or map whose end has not come yet.
  struct OpenNode {
    YamlNode node;
    YAML::anchor_t anchor;
    bool awaitsValue = false;   // In a map: the key has come.
    std::set<std::string> keys; // Those of the map, to be found fast.
  };

  [[noreturn]] static void Refuse(const YAML::Mark& aMark, const std::string& aReason) {
    throw YAML::ParserException(aMark, aReason);
  }
  void Count(const YAML::Mark& aMark, std::size_t aNodes) {
    mNodes += aNodes;
    if (mNodes > kMostYamlNodes)
      Refuse(aMark, "more than " + std::to_string(kMostYamlNodes) + " values, those of anchors and aliases included");
  }
  // Copies a value for the aliases to come; the copy needs as much room as the value itself.
  void Keep(const YAML::Mark& aMark, YAML::anchor_t aAnchor, const YamlNode& aNode) {
    if (aAnchor == 0)
      return;
    Count(aMark, CountNodes(aNode));
    mAnchored[aAnchor] = aNode;
  }
  void Add(const YAML::Mark& aMark, YAML::anchor_t aAnchor, YamlNode aNode) {
    Count(aMark, 1);
    Keep(aMark, aAnchor, aNode);
    Place(aMark, std::move(aNode));
  }
  void Open(const YAML::Mark& aMark, YAML::anchor_t aAnchor, YamlKind aKind) {
    Count(aMark, 1);
    if (mOpen.size() >= kMostYamlDepth)
      Refuse(aMark, "nested more than " + std::to_string(kMostYamlDepth) + " deep");
    mOpen.push_back(
        {{.kind = aKind, .place = GetPlace(aMark), .text = {}, .items = {}, .keys = {}}, aAnchor, false, {}});
  }
  void Close() {
    OpenNode closed = std::move(mOpen.back());
    mOpen.pop_back();
    YAML::Mark mark;
    mark.line = static_cast<int>(closed.node.place.line) - 1;
    mark.column = static_cast<int>(closed.node.place.column) - 1;
    Keep(mark, closed.anchor, closed.node);
    Place(mark, std::move(closed.node));
  }
  // Puts a whole value where it belongs.
  void Place(const YAML::Mark& aMark, YamlNode aNode) {
    if (mOpen.empty()) {
      mRoot = std::move(aNode);
      return;
    }
    OpenNode& parent = mOpen.back();
    if (parent.node.kind == YamlKind::Map && !parent.awaitsValue) {
      PlaceKey(aMark, parent, aNode);
      return;
    }
    parent.awaitsValue = false;
    parent.node.items.push_back(std::move(aNode));
  }
  static void PlaceKey(const YAML::Mark& aMark, OpenNode& aParent, const YamlNode& aKey) {
    if (aKey.kind != YamlKind::Scalar)
      Refuse(aMark, "a key has to be a word");
    if (!aParent.keys.insert(aKey.text).second)
      Refuse(aMark, "the key \"" + aKey.text + "\" is there twice");
    aParent.node.keys.emplace_back(aKey.text, GetPlace(aMark));
    aParent.awaitsValue = true;
  }

  YamlNode mRoot;
  std::vector<OpenNode> mOpen; // The innermost last.
  std::map<YAML::anchor_t, YamlNode> mAnchored;
  std::size_t mNodes = 0;
  bool mHasDocument = false;
};

// Reads a text without a copy.
class TextBuffer final : public std::streambuf {
public:
  explicit TextBuffer(std::string_view aText) {
    char* const begin = const_cast<char*>(aText.data());
    setg(begin, begin, begin + aText.size());
  }
};

std::optional<TextPlace> FindBadByte(std::string_view aText) {
  std::optional<std::size_t> offset = FindInvalidUtf8(aText);
  if (const std::size_t zero = aText.find('\0'); zero != std::string_view::npos)
    offset = std::min(offset.value_or(zero), zero);
  if (!offset)
    return std::nullopt;
  const std::string_view before = aText.substr(0, *offset);
  const std::size_t lineBegin = before.rfind('\n') + 1; // 0 where there is no line end.
  return TextPlace{static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1, *offset - lineBegin + 1};
}

} // namespace

YamlNode ParseYaml(std::string_view aText, TextProblems& aProblems) {
  if (aText.size() > kMostYamlBytes) {
    aProblems.Report({}, "the file has more than " + std::to_string(kMostYamlBytes) + " bytes");
    return {};
  }
  if (const std::optional<TextPlace> place = FindBadByte(aText)) {
    aProblems.Report(*place, "the file is no UTF-8 text");
    return {};
  }
  TextBuffer buffer(aText);
  std::istream stream(&buffer);
  TreeBuilder builder;
  try {
    YAML::Parser parser(stream);
    while (parser.HandleNextDocument(builder)) {
    }
    return builder.TakeRoot();
  } catch (const YAML::Exception& error) {
    aProblems.Report(GetPlace(error.mark), error.msg);
  } catch (const std::exception& error) {
    aProblems.Report({}, std::string("the text could not be read: ") + error.what());
  }
  return {};
}

} // namespace krpersistence
