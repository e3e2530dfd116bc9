#include "krpersistence/yamltext.h"

#include "utf8sequence.h"

#include <algorithm>
#include <exception>
#include <istream>
#include <map>
#include <optional>
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

// The text with "_" for every byte that no text may have.
std::string ReplaceBadBytes(std::string_view aText) {
  std::string text;
  for (std::size_t at = 0; at < aText.size();) {
    const std::size_t length = ReadUtf8(aText.substr(at)).length;
    if (length == 0 || aText[at] == '\0')
      text += '_';
    else
      text += aText.substr(at, length);
    at += std::max(length, std::size_t{1});
  }
  return text;
}

// What a value takes with all that is in it.
struct YamlSize {
  std::size_t nodes = 0;
  std::size_t textBytes = 0; // Of its scalars and keys.
};

YamlSize Measure(const YamlNode& aNode) {
  YamlSize size{1, aNode.text.size()};
  for (const auto& [key, place] : aNode.keys)
    size.textBytes += key.size();
  for (const std::vector<YamlNode>* const nodes : {&aNode.items, &aNode.doubles})
    for (const YamlNode& node : *nodes) {
      const YamlSize inner = Measure(node);
      size.nodes += inner.nodes;
      size.textBytes += inner.textBytes;
    }
  return size;
}

std::size_t GetDepth(const YamlNode& aNode) {
  std::size_t depth = 0;
  for (const std::vector<YamlNode>* const nodes : {&aNode.items, &aNode.doubles})
    for (const YamlNode& node : *nodes)
      depth = std::max(depth, GetDepth(node));
  return depth + 1;
}

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n";

// The text behind the tag, the anchor, blanks and comments that may stand before a value.
std::string_view SkipProperties(std::string_view aText) {
  for (;;) {
    aText.remove_prefix(std::min(aText.find_first_not_of(kBlanks), aText.size()));
    if (aText.starts_with('#'))
      aText.remove_prefix(std::min(aText.find('\n'), aText.size()));
    else if (aText.starts_with('!'))
      aText.remove_prefix(std::min(aText.find_first_of(" \t\r\n\"{}"), aText.size()));
    else if (aText.starts_with('&'))
      aText.remove_prefix(std::min(aText.find_first_of(" \t\r\n,[]{}"), aText.size()));
    else
      return aText;
  }
}

// Whether a value that begins with a quotation mark has its other one: the parser takes the end of the text for that,
// too, and what was to follow for the value's text.
bool IsClosed(std::string_view aValue) {
  const std::string_view text = SkipProperties(aValue);
  if (text.empty() || (text[0] != '"' && text[0] != '\''))
    return true;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[0] == '"' ? text[i] == '\\' : text.substr(i, 2) == "''")
      ++i;
    else if (text[i] == text[0])
      return true;
  }
  return false;
}

// Builds the tree from the parser's events. What makes it senseless to read on ends the parser by its own exception.
class TreeBuilder final : public YAML::EventHandler {
public:
  TreeBuilder(std::string_view aText, TextProblems& aProblems) : mText(aText), mProblems(aProblems) {}

  YamlNode TakeRoot() { return std::move(mRoot); }
  // The tree of a text that could not be read on.
  YamlNode TakeCutRoot() {
    while (!mOpen.empty()) {
      OpenNode cut = std::move(mOpen.back());
      mOpen.pop_back();
      cut.node.isCut = true;
      // The last key may have got no value.
      if (cut.awaitsValue && cut.fate == Fate::Kept)
        cut.node.keys.pop_back();
      cut.node.doubledItems.resize(cut.node.doubles.size());
      if (mOpen.empty())
        mRoot = std::move(cut.node);
      else if (!AwaitsKey())
        PlaceValue(mOpen.back(), std::move(cut.node));
    }
    mRoot.isCut = true;
    return std::move(mRoot);
  }

  void OnDocumentStart(const YAML::Mark& aMark) override {
    if (mHasDocument)
      Refuse(aMark, "a second document begins; there may be one");
    mHasDocument = true;
  }
  void OnDocumentEnd() override {}
  void OnNull(const YAML::Mark& aMark, YAML::anchor_t aAnchor) override {
    Add(aMark, aAnchor, {.kind = YamlKind::Null, .place = GetPlace(aMark), .text = {}, .items = {}, .keys = {}});
  }
  void OnScalar(const YAML::Mark& aMark, const std::string& aTag, YAML::anchor_t aAnchor,
                const std::string& aValue) override {
    // A text without quotation marks may have the tag, too.
    if (aTag == kQuoted && !IsClosed(mText.substr(std::min(static_cast<std::size_t>(aMark.pos), mText.size()))))
      Refuse(aMark, "the quotation marks are not closed");
    const bool isBad = FindInvalidUtf8(aValue) || aValue.find('\0') != std::string::npos;
    if (isBad)
      mProblems.Report(GetPlace(aMark), "the text is no valid UTF-8, or has a zero in it");
    Add(aMark, aAnchor,
        {.kind = YamlKind::Scalar,
         .place = GetPlace(aMark),
         .text = isBad ? ReplaceBadBytes(aValue) : aValue,
         .items = {},
         .keys = {}});
  }
  void OnAlias(const YAML::Mark& aMark, YAML::anchor_t aAnchor) override {
    const auto anchored = mAnchored.find(aAnchor);
    if (anchored == mAnchored.end())
      Refuse(aMark, "an alias within the value that it stands for");
    if (mOpen.size() + GetDepth(anchored->second) > kMostYamlDepth)
      Refuse(aMark, "the alias nests too deeply");
    Count(aMark, Measure(anchored->second));
    Place(aMark, anchored->second);
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
  static constexpr std::string_view kQuoted = "!";

  // What becomes of the value of a key.
  enum class Fate { Kept, Doubled, Dropped };

  // A sequence or map whose end has not come yet.
  struct OpenNode {
    YamlNode node;
    YAML::anchor_t anchor;
    bool awaitsValue = false;                      // In a map: the key has come.
    Fate fate = Fate::Kept;                        // Of that value.
    std::map<std::string, std::size_t> items = {}; // Of a map, by their keys.
  };

  [[noreturn]] static void Refuse(const YAML::Mark& aMark, const std::string& aReason) {
    throw YAML::ParserException(aMark, aReason);
  }
  // To be called before the memory is taken.
  void Count(const YAML::Mark& aMark, const YamlSize& aSize) {
    mSize.nodes += aSize.nodes;
    mSize.textBytes += aSize.textBytes;
    if (mSize.textBytes > kMostYamlTextBytes)
      Refuse(aMark, "more than " + std::to_string(kMostYamlTextBytes) +
                        " bytes of text, those of anchors and aliases included");
    if (mSize.nodes > kMostYamlNodes)
      Refuse(aMark, "more than " + std::to_string(kMostYamlNodes) + " values, those of anchors and aliases included");
  }
  // Copies a value for the aliases to come; the copy needs as much room as the value itself.
  void Keep(const YAML::Mark& aMark, YAML::anchor_t aAnchor, const YamlNode& aNode) {
    if (aAnchor == 0)
      return;
    Count(aMark, Measure(aNode));
    mAnchored[aAnchor] = aNode;
  }
  void Add(const YAML::Mark& aMark, YAML::anchor_t aAnchor, YamlNode aNode) {
    Count(aMark, {1, aNode.text.size()});
    Keep(aMark, aAnchor, aNode);
    Place(aMark, std::move(aNode));
  }
  void Open(const YAML::Mark& aMark, YAML::anchor_t aAnchor, YamlKind aKind) {
    Count(aMark, {1, 0});
    if (mOpen.size() >= kMostYamlDepth)
      Refuse(aMark, "nested more than " + std::to_string(kMostYamlDepth) + " deep");
    mOpen.push_back({{.kind = aKind, .place = GetPlace(aMark), .text = {}, .items = {}, .keys = {}}, aAnchor});
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
  // Whether the next value is a key of the innermost map.
  bool AwaitsKey() const { return mOpen.back().node.kind == YamlKind::Map && !mOpen.back().awaitsValue; }
  // Puts a whole value where it belongs.
  void Place(const YAML::Mark& aMark, YamlNode aNode) {
    if (mOpen.empty())
      mRoot = std::move(aNode);
    else if (AwaitsKey())
      PlaceKey(aMark, mOpen.back(), aNode);
    else
      PlaceValue(mOpen.back(), std::move(aNode));
  }
  void PlaceKey(const YAML::Mark& aMark, OpenNode& aParent, const YamlNode& aKey) {
    aParent.awaitsValue = true;
    if (aKey.kind != YamlKind::Scalar) {
      mProblems.Report(GetPlace(aMark), "a key has to be a word");
      aParent.fate = Fate::Dropped;
      return;
    }
    const auto [item, isNew] = aParent.items.emplace(aKey.text, aParent.node.items.size());
    aParent.fate = isNew ? Fate::Kept : Fate::Doubled;
    if (isNew) {
      aParent.node.keys.emplace_back(aKey.text, GetPlace(aMark));
      return;
    }
    mProblems.Report(GetPlace(aMark), "the key \"" + aKey.text + "\" is there twice");
    aParent.node.doubledItems.push_back(item->second);
  }
  static void PlaceValue(OpenNode& aParent, YamlNode aNode) {
    aParent.awaitsValue = false;
    if (aParent.fate == Fate::Kept)
      aParent.node.items.push_back(std::move(aNode));
    else if (aParent.fate == Fate::Doubled)
      aParent.node.doubles.push_back(std::move(aNode));
  }

  const std::string_view mText;
  TextProblems& mProblems;
  YamlNode mRoot;
  std::vector<OpenNode> mOpen; // The innermost last.
  std::map<YAML::anchor_t, YamlNode> mAnchored;
  YamlSize mSize;
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

// Tells of the first byte of each line that is no UTF-8.
void ReportBadBytes(std::string_view aText, TextProblems& aProblems) {
  std::size_t line = 1;
  for (std::size_t begin = 0; begin < aText.size(); ++line) {
    const std::size_t end = std::min(aText.find('\n', begin), aText.size());
    if (const std::optional<std::size_t> bad = FindInvalidUtf8(aText.substr(begin, end - begin)))
      aProblems.Report({line, *bad + 1}, "the file is no UTF-8 text");
    begin = end + 1;
  }
}

// Of a text that has bytes of texts alone.
YamlNode ParseText(std::string_view aText, TextProblems& aProblems) {
  TextBuffer buffer(aText);
  std::istream stream(&buffer);
  TreeBuilder builder(aText, aProblems);
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
  return builder.TakeCutRoot();
}

YamlNode MakeUnread() {
  YamlNode root;
  root.isCut = true;
  return root;
}

} // namespace

YamlNode ParseYaml(std::string_view aText, TextProblems& aProblems) {
  if (aText.size() > kMostYamlBytes) {
    aProblems.Report({}, "the file has more than " + std::to_string(kMostYamlBytes) + " bytes");
    return MakeUnread();
  }
  // What has zeros is another kind of file, of which everything would be told to be wrong.
  if (const std::size_t zero = aText.find('\0'); zero != std::string_view::npos) {
    const std::string_view before = aText.substr(0, zero);
    const auto line = static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1;
    aProblems.Report({line, zero - (before.rfind('\n') + 1) + 1}, "the file is no UTF-8 text");
    return MakeUnread();
  }
  // The parser's places count from behind it.
  if (aText.starts_with(kByteOrderMark))
    aText.remove_prefix(kByteOrderMark.size());
  if (!FindInvalidUtf8(aText))
    return ParseText(aText, aProblems);
  ReportBadBytes(aText, aProblems);
  return ParseText(ReplaceBadBytes(aText), aProblems);
}

} // namespace krpersistence
