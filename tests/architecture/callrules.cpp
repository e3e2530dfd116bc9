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

// Words that are not used below the trees, parted by blanks, but in the folder that is excepted. One with a star at its
// end is the beginning of words.
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
    {"clone clone3 g_spawn_* g_subprocess_*", "libraries/ apps/", "", Use::FreeCall,
     "Only drivers run in processes of their own"},
    {"dlopen dlmopen", "libraries/ apps/", kDrivers, Use::FreeCall,
     "Only drivers are loaded, in processes of their own"},
    {"g_module_open*", "libraries/ apps/", "", Use::FreeCall, "Only drivers are loaded, in processes of their own"},
    {"QProcess QLibrary QPluginLoader", "libraries/ apps/", "", Use::Any, "Nothing is loaded or run for the user"},
    {"QDesktopServices", "libraries/ apps/", kInstalledTexts, Use::Any,
     "Only links of documents that are installed are opened in other programs"},
    {"g_app_info_*", "libraries/ apps/", "", Use::FreeCall,
     "Only links of documents that are installed are opened in other programs"},
    {"gets strcpy strcat stpcpy sprintf vsprintf alloca", "libraries/ apps/", "", Use::FreeCall,
     "What is written needs a size that is checked"},
    {"tmpnam tempnam mktemp tmpnam_r", "libraries/ apps/", "", Use::FreeCall,
     "A temporary file is made with its name, as KrAtomicFile does"},
    {"getenv qgetenv qEnvironmentVariable*", "libraries/", "", Use::FreeCall,
     "A program with other rights may be led by its environment: use secure_getenv"},
    {"setHtml insertHtml appendHtml setMarkdown insertMarkdown", "libraries/ apps/", "", Use::Call,
     "No text becomes markup"},
    {"RichText AutoText MarkdownText QErrorMessage QStaticText QProgressDialog QWhatsThis setWhatsThis",
     "libraries/ apps/", "", Use::Any, "No text is shown by what may take it for markup"},
    {"QTextBrowser", "libraries/ apps/", kInstalledTexts, Use::Any, "Only documents that are installed become markup"},
};

// Controls that take texts for markup unless they are told not to.
constexpr std::string_view kGuessing[] = {"QLabel", "QMessageBox"};
// How a text becomes a tooltip, and which of the call's arguments it is, counted from the last.
struct TooltipRow {
  std::string_view call;
  bool isSecond; ///< Otherwise the last.
};
constexpr TooltipRow kTooltips[] = {{"setToolTip", false}, {"setTabToolTip", false}, {"showText", true}};
constexpr std::string_view kTooltipRule =
    "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once.";
constexpr std::string_view kToPlain[] = {"ToPlainToolTip(", "ToToolTip("};
// Of nothing but a literal, or of the name of a C string: what comes from elsewhere is in a class.
constexpr std::string_view kLiterals[] = {"QStringLiteral(", "QLatin1String(", "tr("};
constexpr std::string_view kNothing[] = {"QString()", "QVariant()"};
constexpr std::string_view kBlank = " \n";

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

std::string_view Trim(std::string_view aText) {
  aText.remove_prefix(std::min(aText.find_first_not_of(kBlank), aText.size()));
  return aText.substr(0, aText.find_last_not_of(kBlank) + 1);
}

int GetDepthChange(char aCharacter) {
  constexpr std::string_view kOpening = "([{";
  constexpr std::string_view kClosing = ")]}";
  return kOpening.find(aCharacter) != kOpening.npos ? 1 : kClosing.find(aCharacter) != kClosing.npos ? -1 : 0;
}

// Where the parenthesis ends in which the text begins.
std::size_t FindEnd(std::string_view aText) {
  int depth = 0;
  for (std::size_t at = 0; at < aText.size(); ++at)
    if ((depth += GetDepthChange(aText[at])) < 0)
      return at;
  return aText.size();
}

// The parts of a text between signs that are in no parentheses of it; "::" is no sign.
std::vector<std::string_view> SplitAtTop(std::string_view aText, char aSign) {
  std::vector<std::string_view> parts;
  int depth = 0;
  std::size_t start = 0;
  for (std::size_t at = 0; at < aText.size(); ++at) {
    depth += GetDepthChange(aText[at]);
    const bool isScope = aSign == ':' && (aText.substr(at, 2) == kScope || (at > 0 && aText[at - 1] == ':'));
    if (depth != 0 || aText[at] != aSign || isScope)
      continue;
    parts.push_back(Trim(aText.substr(start, at - start)));
    start = at + 1;
  }
  parts.push_back(Trim(aText.substr(start)));
  return parts;
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

  /// The same of a word that only begins so.
  std::size_t FindBeginning(std::string_view aWord, std::size_t aFrom) const {
    std::size_t at = mText.find(aWord, aFrom);
    while (at != mText.npos && at != 0 && IsWordCharacter(mText[at - 1]))
      at = mText.find(aWord, at + 1);
    return at;
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

  /// The arguments of the call whose parenthesis is the next.
  std::vector<std::string_view> GetArguments(std::size_t aAt) const {
    const std::size_t open = std::min(mText.find('(', aAt), mText.size() - 1);
    const std::string_view rest = std::string_view(mText).substr(open + 1);
    return SplitAtTop(rest.substr(0, FindEnd(rest)), ',');
  }

  /// Where the name of the call begins in whose arguments the place is; npos where it is in none.
  std::size_t FindCall(std::size_t aAt) const {
    int depth = 0;
    for (std::size_t at = aAt; at > 0; --at) {
      const char character = mText[at - 1];
      depth += character == ')' ? 1 : 0;
      depth -= character == '(' ? 1 : 0;
      if (character == ';' || character == '{' || character == '}')
        return mText.npos;
      if (depth < 0) {
        std::size_t start = at - 1;
        while (start > 0 && IsWordCharacter(mText[start - 1]))
          --start;
        return start;
      }
    }
    return mText.npos;
  }

  std::string_view GetWord(std::size_t aAt) const { return std::string_view(mText).substr(aAt, GetWordEnd(aAt) - aAt); }

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
    // A pointer's sign stands at its type.
    while (aLast > 0 && (mText[aLast] == '*' || mText[aLast] == '&'))
      --aLast;
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
      const bool isBeginning = aWord.ends_with('*');
      const std::string_view beginning = aWord.substr(0, aWord.size() - (isBeginning ? 1 : 0));
      const auto find = [&](std::size_t aFrom) {
        return isBeginning ? aCode.FindBeginning(beginning, aFrom) : aCode.Find(aWord, aFrom);
      };
      for (std::size_t at = find(0); at != std::string::npos; at = find(at + 1)) {
        const std::string_view word = aCode.GetWord(at);
        if (aCode.IsUse(row.use, at, word.size()))
          aBroken.push_back({aCode.GetLine(at), std::string(row.rule) + ", not " + std::string(word) + "."});
      }
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

// What stands in the parentheses of one of these and of nothing else.
std::optional<std::string_view> Unwrap(std::string_view aText, std::span<const std::string_view> aWrappers) {
  for (const std::string_view wrapper : aWrappers) {
    const std::string_view rest = aText.substr(std::min(wrapper.size(), aText.size()));
    if (aText.starts_with(wrapper) && FindEnd(rest) + 1 == rest.size())
      return Trim(rest.substr(0, rest.size() - 1));
  }
  return std::nullopt;
}

// Whether it is a text of ours, or one that no tooltip takes for markup; in each case of a question.
bool IsPlainTooltip(std::string_view aText) {
  if (const auto cases = SplitAtTop(aText, '?'); cases.size() > 1) {
    const auto answers = SplitAtTop(aText.substr(aText.find('?', cases.front().size()) + 1), ':');
    return answers.size() == 2 && std::ranges::all_of(answers, IsPlainTooltip);
  }
  constexpr std::string_view kVariant[] = {"QVariant("};
  if (std::ranges::find(kNothing, aText) != std::end(kNothing) || Unwrap(aText, kToPlain))
    return true;
  if (const auto literal = Unwrap(aText, kLiterals))
    return std::ranges::all_of(*literal, IsWordCharacter);
  const auto variant = Unwrap(aText, kVariant);
  return variant && IsPlainTooltip(*variant);
}

// What a model answers, or is given, as a tooltip.
bool IsPlainRole(const Code& aCode, std::size_t aAt) {
  const std::size_t call = aCode.FindCall(aAt);
  const std::string_view name = call == std::string::npos ? "" : aCode.GetWord(call);
  if (name == "data" || name == "itemData" || name == "headerData")
    return true;
  if (name.starts_with("set")) {
    const std::vector<std::string_view> arguments = aCode.GetArguments(call);
    const auto role = std::ranges::find(arguments, "Qt::ToolTipRole");
    // Items of models have the role first.
    const std::ptrdiff_t text = role == arguments.begin() ? 1 : -1;
    return role != arguments.end() && arguments.size() > 1 && IsPlainTooltip(*(role + text));
  }
  constexpr std::string_view kReturn = "return";
  const std::size_t answer = aCode.Find(kReturn, aAt);
  return answer != std::string::npos && IsPlainTooltip(Trim(aCode.GetStatement(answer).substr(kReturn.size())));
}

void FindTooltips(std::string_view aFile, const Code& aCode, std::vector<BrokenCall>& aBroken) {
  if (!IsBelow(aFile, "libraries/ apps/"))
    return;
  for (const TooltipRow& row : kTooltips)
    for (std::size_t at = aCode.Find(row.call, 0); at != std::string::npos; at = aCode.Find(row.call, at + 1)) {
      const std::vector<std::string_view> arguments = aCode.GetArguments(at);
      const bool isText = !row.isSecond || arguments.size() > 1;
      if (aCode.IsBeforeParenthesis(at + row.call.size()) && isText &&
          !IsPlainTooltip(row.isSecond ? arguments[1] : arguments.back()))
        aBroken.push_back({aCode.GetLine(at), std::string(kTooltipRule)});
    }
  constexpr std::string_view kRole = "ToolTipRole";
  for (std::size_t at = aCode.Find(kRole, 0); at != std::string::npos; at = aCode.Find(kRole, at + 1))
    if (!IsPlainRole(aCode, at))
      aBroken.push_back({aCode.GetLine(at), std::string(kTooltipRule)});
}

// A form makes a label of a text, which takes it for markup; one that is given to it is looked at above.
void FindRowsOfForms(std::string_view aFile, const Code& aCode, std::vector<BrokenCall>& aBroken) {
  if (!IsBelow(aFile, "libraries/ apps/"))
    return;
  constexpr std::string_view kLabel = "QLabel";
  std::vector<std::string> labels;
  for (std::size_t at = aCode.Find(kLabel, 0); at != std::string::npos; at = aCode.Find(kLabel, at + 1))
    if (aCode.IsMaking(at, kLabel.size()))
      labels.push_back(aCode.GetMade(at, kLabel.size()).value_or(""));
  constexpr std::string_view kCall = "addRow";
  for (std::size_t at = aCode.Find(kCall, 0); at != std::string::npos; at = aCode.Find(kCall, at + 1)) {
    const std::vector<std::string_view> arguments = aCode.GetArguments(at);
    const bool isNamed = arguments.size() > 1 && Unwrap(arguments.front(), kLiterals) != "" &&
                         std::ranges::find(labels, arguments.front()) == labels.end();
    if (aCode.IsBeforeParenthesis(at + kCall.size()) && isNamed)
      aBroken.push_back({aCode.GetLine(at), "A row of a form is named by a literal or by a label of plain text."});
  }
}

} // namespace

std::vector<BrokenCall> FindBrokenCalls(std::string_view aFile, std::string_view aSource) {
  const Code code(aSource);
  std::vector<BrokenCall> broken;
  FindWords(aFile, code, broken);
  FindGuessingControls(aFile, code, broken);
  FindTooltips(aFile, code, broken);
  FindRowsOfForms(aFile, code, broken);
  std::stable_sort(broken.begin(), broken.end(),
                   [](const BrokenCall& aLeft, const BrokenCall& aRight) { return aLeft.line < aRight.line; });
  return broken;
}

} // namespace archcheck
