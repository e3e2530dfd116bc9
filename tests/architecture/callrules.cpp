#include "callrules.h"

#include "includeparser.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace archcheck {

namespace {

constexpr std::string_view kLibraries = "libraries/";
constexpr std::string_view kDrivers = "libraries/krcamerabridge/clprotocol/";
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
    {"RichText AutoText MarkdownText QErrorMessage QStaticText QTextBrowser QProgressDialog QWhatsThis setWhatsThis",
     "libraries/ apps/", "", Use::Any, "No text is shown by what may take it for markup"},
};

// Controls that take texts for markup unless they are told not to.
constexpr std::string_view kGuessing[] = {"QLabel", "QMessageBox"};
// How a text becomes a tooltip.
constexpr std::string_view kTooltips[] = {"setToolTip", "showText"};
constexpr std::string_view kToPlain = "ToPlainToolTip(";
constexpr std::string_view kLiterals[] = {"QStringLiteral(", "QLatin1String("};

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

  bool Has(std::string_view aText) const { return mText.find(aText) != mText.npos; }

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
    const std::size_t name = mText.find_first_not_of(" \n:", aAt + aLength);
    std::size_t end = name;
    while (end < mText.size() && IsWordCharacter(mText[end]))
      ++end;
    return end != name && end < mText.size() && (mText[end] == '(' || mText[end] == '{');
  }

  /// The statement from the place on.
  std::string_view GetStatement(std::size_t aAt) const {
    return std::string_view(mText).substr(aAt, mText.find(';', aAt) - aAt);
  }

  int GetLine(std::size_t aAt) const {
    return 1 + static_cast<int>(std::count(mText.begin(), mText.begin() + static_cast<std::ptrdiff_t>(aAt), '\n'));
  }

private:
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

void FindGuessingControls(std::string_view aFile, const Code& aCode, std::vector<BrokenCall>& aBroken) {
  if (!IsBelow(aFile, "libraries/ apps/") || aCode.Has(kPlainFormat))
    return;
  for (const std::string_view control : kGuessing)
    for (std::size_t at = aCode.Find(control, 0); at != std::string::npos; at = aCode.Find(control, at + 1))
      if (aCode.IsMaking(at, control.size()))
        aBroken.push_back({aCode.GetLine(at), "A " + std::string(control) + " takes texts for markup unless " +
                                                  std::string(kPlainFormat) + " is called."});
}

void FindTooltips(std::string_view aFile, const Code& aCode, std::vector<BrokenCall>& aBroken) {
  if (!IsBelow(aFile, kLibraries) || aCode.Has(kToPlain))
    return;
  for (const std::string_view tooltip : kTooltips)
    for (std::size_t at = aCode.Find(tooltip, 0); at != std::string::npos; at = aCode.Find(tooltip, at + 1)) {
      const std::string_view statement = aCode.GetStatement(at);
      const bool isLiteral = statement.find("CStr(") == statement.npos &&
                             std::any_of(std::begin(kLiterals), std::end(kLiterals), [&](std::string_view aLiteral) {
                               return statement.find(aLiteral) != statement.npos;
                             });
      if (aCode.IsBeforeParenthesis(at + tooltip.size()) && !isLiteral)
        aBroken.push_back({aCode.GetLine(at), "A tooltip that is no literal goes through ToPlainToolTip."});
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
