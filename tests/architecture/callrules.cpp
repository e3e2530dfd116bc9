#include "callrules.h"

#include "includeparser.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>

namespace archcheck {

namespace {

constexpr std::string_view kDrivers = "libraries/krcamerabridge/clprotocol/";
constexpr std::string_view kInstalledTexts = "apps/krviewer/help/";
constexpr std::string_view kScope = "::";
constexpr std::string_view kPlainFormat = "setTextFormat(Qt::PlainText)";

enum class Use {
  Any,
  Call,    ///< In front of a parenthesis.
  FreeCall ///< The same, but neither as a member nor as a name that is declared.
};

// Words that are not used below the trees, parted by blanks, but in the folder that is excepted.
struct WordRow {
  std::string_view words;
  std::string_view trees;
  std::string_view exception; ///< Empty for none.
  Use use;
  std::string_view rule;
};

constexpr WordRow kWords[] = {
    {"system popen wordexp", "libraries/ apps/", "", Use::FreeCall, "No shell is given anything"},
    {"execl execle execlp execv execve execvp execvpe fork vfork posix_spawn posix_spawnp", "libraries/ apps/",
     kDrivers, Use::FreeCall, "Only drivers run in processes of their own"},
    {"dlopen dlmopen", "libraries/ apps/", kDrivers, Use::FreeCall,
     "Only drivers are loaded, in processes of their own"},
    {"QProcess QLibrary QPluginLoader", "libraries/ apps/", "", Use::Any, "Nothing is loaded or run for the user"},
    {"QDesktopServices", "libraries/", "", Use::Any, "A library opens nothing in other programs"},
    {"gets strcpy strcat stpcpy sprintf vsprintf alloca", "libraries/ apps/", "", Use::FreeCall,
     "What is written needs a size that is checked"},
    {"tmpnam tempnam mktemp tmpnam_r", "libraries/ apps/", "", Use::FreeCall,
     "A temporary file is made with its name, as KrAtomicFile does"},
    {"getenv", "libraries/", "", Use::FreeCall,
     "A program with other rights may be led by its environment: use secure_getenv"},
    {"setHtml insertHtml appendHtml setMarkdown insertMarkdown", "libraries/ apps/", "", Use::Call,
     "No text becomes markup"},
    {"RichText AutoText MarkdownText QErrorMessage QStaticText QProgressDialog QWhatsThis setWhatsThis",
     "libraries/ apps/", "", Use::Any, "No text is shown by what may take it for markup"},
    {"QTextBrowser", "libraries/ apps/", kInstalledTexts, Use::Any, "Only documents that are installed become markup"},
};

// Controls that take texts for markup unless they are told not to.
constexpr std::string_view kGuessing[] = {"QLabel", "QMessageBox"};
// How a text becomes a tooltip.
constexpr std::string_view kTooltips[] = {"setToolTip", "setTabToolTip", "showText"};
constexpr std::string_view kToPlain[] = {"ToPlainToolTip(", "ToToolTip("};
constexpr std::string_view kLiterals[] = {"QStringLiteral(", "QLatin1String(", "tr("};

bool IsWordCharacter(char aCharacter) {
  return std::isalnum(static_cast<unsigned char>(aCharacter)) != 0 || aCharacter == '_';
}

template <typename Take>
void ForEachWord(std::string_view aWords, Take aTake) {
  while (!aWords.empty()) {
    const std::size_t end = std::min(aWords.find(' '), aWords.size());
    aTake(aWords.substr(0, end));
    aWords.remove_prefix(std::min(end + 1, aWords.size()));
  }
}

bool IsBelow(std::string_view aFile, std::string_view aTrees) {
  bool isBelow = false;
  ForEachWord(aTrees, [&](std::string_view aTree) { isBelow = isBelow || aFile.starts_with(aTree); });
  return isBelow;
}

// A source text without comments and literals, and where words are in it.
class Code {
public:
  explicit Code(std::string_view aSource) : mText(BlankCommentsAndLiterals(aSource)) {}

  /// Where the word stands next, alone; npos where it does not.
  std::size_t Find(std::string_view aWord, std::size_t aFrom) const {
    for (std::size_t at = mText.find(aWord, aFrom); at != mText.npos; at = mText.find(aWord, at + 1)) {
      const std::size_t end = at + aWord.size();
      if ((at == 0 || !IsWordCharacter(mText[at - 1])) && (end == mText.size() || !IsWordCharacter(mText[end])))
        return at;
    }
    return mText.npos;
  }

  bool IsBeforeParenthesis(std::size_t aEnd) const {
    const std::size_t next = mText.find_first_not_of(" \n", aEnd);
    return next != mText.npos && mText[next] == '(';
  }

  bool IsUse(Use aUse, std::size_t aAt, std::size_t aLength) const {
    return aUse == Use::Any || (IsBeforeParenthesis(aAt + aLength) && (aUse == Use::Call || IsFree(aAt)));
  }

  /// Whether an object of the class that stands there is made.
  bool IsMaking(std::size_t aAt, std::size_t aLength) const {
    constexpr std::string_view kNew = "new ";
    if (IsBeforeParenthesis(aAt + aLength) || (aAt >= kNew.size() && mText.compare(aAt - kNew.size(), 4, kNew) == 0))
      return true;
    if (mText.compare(aAt + aLength, kScope.size(), kScope) == 0)
      return IsBoxOfOneCall(aAt + aLength + kScope.size());
    const std::size_t name = mText.find_first_not_of(" \n", aAt + aLength);
    const std::size_t end = GetWordEnd(name);
    return end != name && end < mText.size() && (mText[end] == '(' || mText[end] == '{');
  }

  /// What the object that is made there is called: a variable, a member, "" for a base class of the one that is
  /// constructed; nothing for one that has no name.
  std::optional<std::string> GetMade(std::size_t aAt, std::size_t aLength) const {
    constexpr std::string_view kNew = "new ";
    if (aAt < kNew.size() || mText.compare(aAt - kNew.size(), kNew.size(), kNew) != 0)
      return IsBeforeParenthesis(aAt + aLength) ? GetBase(aAt) : GetDeclared(aAt + aLength);
    const std::size_t before = mText.find_last_not_of(" \n", aAt - kNew.size() - 1);
    if (before == mText.npos || (mText[before] != '=' && mText[before] != '('))
      return std::nullopt;
    std::size_t end = mText.find_last_not_of(" \n", before - 1) + 1;
    std::size_t start = end;
    while (start > 0 && (IsWordCharacter(mText[start - 1]) || mText[start - 1] == '[' || mText[start - 1] == ']'))
      --start;
    return start == end ? std::nullopt : std::optional(mText.substr(start, end - start));
  }

  /// Whether a member function is called of the object with this name, or of this one for "", in a part of the text.
  bool IsCalled(std::string_view aName, std::string_view aCall, std::size_t aFrom, std::size_t aEnd) const {
    for (std::size_t at = mText.find(aCall, aFrom); at < aEnd; at = mText.find(aCall, at + 1)) {
      const std::string_view before = std::string_view(mText).substr(0, at);
      if (aName.empty() ? !before.ends_with('.') && !before.ends_with("->")
                        : EndsWith(before, aName, ".") || EndsWith(before, aName, "->"))
        return true;
    }
    return false;
  }

  /// The statement from the place on.
  std::string_view GetStatement(std::size_t aAt) const {
    return std::string_view(mText).substr(aAt, mText.find(';', aAt) - aAt);
  }

  int GetLine(std::size_t aAt) const {
    return 1 + static_cast<int>(std::count(mText.begin(), mText.begin() + static_cast<std::ptrdiff_t>(aAt), '\n'));
  }

private:
  static bool EndsWith(std::string_view aText, std::string_view aName, std::string_view aOperator) {
    if (!aText.ends_with(aOperator))
      return false;
    aText.remove_suffix(aOperator.size());
    return aText.ends_with(aName) &&
           (aText.size() == aName.size() || !IsWordCharacter(aText[aText.size() - aName.size() - 1]));
  }

  std::optional<std::string> GetBase(std::size_t aAt) const {
    const std::size_t before = aAt == 0 ? mText.npos : mText.find_last_not_of(" \n", aAt - 1);
    const bool isBase = before != mText.npos && before > 0 && mText[before - 1] != ':' &&
                        (mText[before] == ':' || mText[before] == ',');
    return isBase ? std::optional<std::string>("") : std::nullopt;
  }

  // Of "QLabel label(", not of "QMessageBox::warning(".
  std::optional<std::string> GetDeclared(std::size_t aEnd) const {
    const std::size_t start = mText.find_first_not_of(" \n", aEnd);
    if (start == mText.npos || !IsWordCharacter(mText[start]))
      return std::nullopt;
    return mText.substr(start, GetWordEnd(start) - start);
  }

  // Other functions of the classes are called by those that are derived from them.
  bool IsBoxOfOneCall(std::size_t aName) const {
    constexpr std::string_view kBoxes[] = {"about", "critical", "information", "question", "warning"};
    const std::string_view name = std::string_view(mText).substr(aName, GetWordEnd(aName) - aName);
    return std::find(std::begin(kBoxes), std::end(kBoxes), name) != std::end(kBoxes);
  }

  std::size_t GetWordEnd(std::size_t aStart) const {
    std::size_t end = aStart;
    while (end < mText.size() && IsWordCharacter(mText[end]))
      ++end;
    return end;
  }

  // Neither a member of something nor a name that is declared.
  bool IsFree(std::size_t aAt) const {
    const std::size_t before = aAt == 0 ? mText.npos : mText.find_last_not_of(" \n", aAt - 1);
    if (before == mText.npos)
      return true;
    const bool isMember = mText[before] == '.' || (mText[before] == '>' && before > 0 && mText[before - 1] == '-');
    return !isMember && !EndsTypeName(before);
  }

  // Whether a declared name would follow, as in "KrSystem system(".
  bool EndsTypeName(std::size_t aLast) const {
    constexpr std::string_view kKeywords[] = {"return", "else", "do", "co_return", "co_await", "co_yield", "throw"};
    if (!IsWordCharacter(mText[aLast]))
      return false;
    std::size_t start = aLast;
    while (start > 0 && IsWordCharacter(mText[start - 1]))
      --start;
    const std::string_view word = std::string_view(mText).substr(start, aLast + 1 - start);
    return std::find(std::begin(kKeywords), std::end(kKeywords), word) == std::end(kKeywords);
  }

  std::string mText;
};

void FindWords(std::string_view aFile, const Code& aCode, std::vector<BrokenCall>& aBroken) {
  for (const WordRow& row : kWords) {
    if (!IsBelow(aFile, row.trees) || (!row.exception.empty() && aFile.starts_with(row.exception)))
      continue;
    ForEachWord(row.words, [&](std::string_view aWord) {
      for (std::size_t at = aCode.Find(aWord, 0); at != std::string::npos; at = aCode.Find(aWord, at + 1))
        if (aCode.IsUse(row.use, at, aWord.size()))
          aBroken.push_back({aCode.GetLine(at), std::string(row.rule) + ", not " + std::string(aWord) + "."});
    });
  }
}

// Until the next object of that name is made, each is to be told so.
void FindGuessingControls(std::string_view aFile, const Code& aCode, std::vector<BrokenCall>& aBroken) {
  if (!IsBelow(aFile, "libraries/ apps/"))
    return;
  for (const std::string_view control : kGuessing) {
    std::vector<std::pair<std::size_t, std::optional<std::string>>> made;
    for (std::size_t at = aCode.Find(control, 0); at != std::string::npos; at = aCode.Find(control, at + 1))
      if (aCode.IsMaking(at, control.size()))
        made.emplace_back(at, aCode.GetMade(at, control.size()));
    for (auto one = made.begin(); one != made.end(); ++one) {
      const auto next =
          std::find_if(one + 1, made.end(), [one](const auto& aOther) { return aOther.second == one->second; });
      const std::size_t end = next == made.end() ? std::string::npos : next->first;
      if (!one->second || !aCode.IsCalled(*one->second, kPlainFormat, one->first, end))
        aBroken.push_back({aCode.GetLine(one->first), "A " + std::string(control) +
                                                          " takes texts for markup unless its " +
                                                          std::string(kPlainFormat) + " is called."});
    }
  }
}

bool HasAny(std::string_view aText, std::span<const std::string_view> aWords) {
  return std::any_of(aWords.begin(), aWords.end(),
                     [&](std::string_view aWord) { return aText.find(aWord) != aText.npos; });
}

void FindTooltips(std::string_view aFile, const Code& aCode, std::vector<BrokenCall>& aBroken) {
  if (!IsBelow(aFile, "libraries/ apps/"))
    return;
  for (const std::string_view tooltip : kTooltips)
    for (std::size_t at = aCode.Find(tooltip, 0); at != std::string::npos; at = aCode.Find(tooltip, at + 1)) {
      const std::string_view statement = aCode.GetStatement(at);
      const bool isLiteral = statement.find("CStr(") == statement.npos && HasAny(statement, kLiterals);
      if (aCode.IsBeforeParenthesis(at + tooltip.size()) && !isLiteral && !HasAny(statement, kToPlain))
        aBroken.push_back(
            {aCode.GetLine(at), "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once."});
    }
}

} // namespace

std::vector<BrokenCall> FindBrokenCalls(std::string_view aFile, std::string_view aSource) {
  const Code code(aSource);
  std::vector<BrokenCall> broken;
  FindWords(aFile, code, broken);
  FindGuessingControls(aFile, code, broken);
  FindTooltips(aFile, code, broken);
  std::stable_sort(broken.begin(), broken.end(),
                   [](const BrokenCall& aLeft, const BrokenCall& aRight) { return aLeft.line < aRight.line; });
  return broken;
}

} // namespace archcheck
