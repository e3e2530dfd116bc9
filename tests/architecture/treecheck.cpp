#include "treecheck.h"

#include "callrules.h"
#include "cmakeparser.h"
#include "includeparser.h"
#include "limittable.h"
#include "rules.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>

namespace archcheck {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTrees[] = {"libraries", "apps", "examples", "tests", "benchmarks", "fuzz"};
constexpr std::string_view kSourceEndings[] = {".h", ".cpp", ".cc", ".hpp"};
constexpr std::string_view kLibraries = "libraries/";
constexpr std::string_view kTests = "tests/";
constexpr std::string_view kLimits = "docs/security.md";
constexpr std::string_view kExamples = "examples/";
constexpr int kMostLines = 500;
constexpr int kMostExampleLines = 99;

std::string ReadText(const fs::path& aFile) {
  std::ifstream stream(aFile, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// Neither blank lines nor comments and directives count.
int CountCodeLines(std::string_view aSource) {
  const std::string code = BlankComments(aSource);
  int lines = 0;
  for (std::size_t start = 0; start < code.size();) {
    const std::size_t end = std::min(code.find('\n', start), code.size());
    const std::string_view line = std::string_view(code).substr(start, end - start);
    const std::size_t first = line.find_first_not_of(" \t\r");
    lines += first != line.npos && line[first] != '#' ? 1 : 0;
    start = end + 1;
  }
  return lines;
}

bool IsSource(const fs::path& aFile) {
  const std::string ending = aFile.extension().string();
  return std::find(std::begin(kSourceEndings), std::end(kSourceEndings), ending) != std::end(kSourceEndings);
}

// The name of the folder below libraries/ that holds a file; empty for a file elsewhere.
std::string GetLibraryFolder(std::string_view aFile) {
  if (!aFile.starts_with(kLibraries))
    return {};
  const std::string_view rest = aFile.substr(kLibraries.size());
  const std::size_t slash = rest.find('/');
  return std::string(rest.substr(0, slash == rest.npos ? 0 : slash));
}

// The room that holds a file: the longest name of a room that its path begins with. Public headers of values that the
// rules work with belong to them.
const Room* GetRoomOfFile(std::string_view aFile) {
  constexpr std::string_view kLogic = "libraries/krgui/logic/";
  return aFile.starts_with(kLogic) || IsValueHeader(aFile) ? FindRoom("krgui/logic")
                                                           : FindRoom(GetLibraryFolder(aFile));
}

// The folder below libraries/ if the file is one of its public headers; otherwise empty.
std::string GetPublicFolder(std::string_view aFile) {
  const std::string folder = GetLibraryFolder(aFile);
  const bool isPublic = !folder.empty() && aFile.starts_with(std::string(kLibraries) + folder + "/include/");
  return isPublic ? folder : std::string();
}

// Checks one tree; collects what it finds.
class TreeChecker {
public:
  explicit TreeChecker(const fs::path& aRoot) : mRoot(aRoot) {}

  TreeReport Run() {
    for (const std::string_view tree : kTrees)
      ReadTree(mRoot / tree);
    CheckRooms();
    for (const std::string& file : mSources)
      CheckSource(file);
    for (const std::string& file : mLists)
      CheckList(file);
    CheckExamples();
    CheckLimits();
    std::sort(mReport.violations.begin(), mReport.violations.end(),
              [](const Violation& aLeft, const Violation& aRight) {
                return std::tie(aLeft.file, aLeft.line, aLeft.rule) < std::tie(aRight.file, aRight.line, aRight.rule);
              });
    mReport.filesRead = static_cast<int>(mSources.size() + mLists.size());
    return std::move(mReport);
  }

private:
  void ReadTree(const fs::path& aTree) {
    if (!fs::is_directory(aTree))
      return;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(aTree)) {
      const std::string file = entry.path().lexically_relative(mRoot).generic_string();
      if (!entry.is_regular_file())
        continue;
      if (entry.path().filename() == "CMakeLists.txt")
        mLists.insert(file);
      else if (IsSource(entry.path()))
        mSources.insert(file);
    }
  }

  void Report(const std::string& aFile, int aLine, const std::string& aRule) {
    mReport.violations.push_back({aFile, aLine, aRule});
  }

  void CheckRooms() {
    std::set<std::string> reported;
    for (const std::string& file : mSources) {
      const std::string folder = GetLibraryFolder(file);
      if (!folder.empty() && FindRoom(folder) == nullptr && reported.insert(folder).second)
        Report(file, 1, "The room " + folder + " is not in the table of rooms.");
    }
  }

  void CheckSource(const std::string& aFile) {
    const std::string text = ReadText(mRoot / aFile);
    if (!IsLowerCaseName(fs::path(aFile).filename().string()))
      Report(aFile, 1, "A file name is written in lower case.");
    if (std::count(text.begin(), text.end(), '\n') > kMostLines)
      Report(aFile, kMostLines + 1, "A source file has 500 lines at most.");
    if (!GetPublicFolder(aFile).empty())
      CheckPublicHeader(aFile, text);
    for (const Include& include : ParseIncludes(text))
      CheckInclude(aFile, include);
    for (const BrokenCall& call : FindBrokenCalls(aFile, text))
      Report(aFile, call.line, call.rule);
    if (aFile.starts_with(kTests))
      AddTests(text, mTests);
  }

  // What a reader has to take in of one, whatever files it is parted into.
  void CheckExamples() {
    std::map<std::string, int> lines;
    for (const std::string& file : mSources)
      if (file.starts_with(kExamples))
        lines[file.substr(0, file.find('/', kExamples.size()))] += CountCodeLines(ReadText(mRoot / file));
    for (const auto& [example, count] : lines)
      if (count > kMostExampleLines)
        Report(example, 1,
               "An example has under 100 lines of code in all of its files, not " + std::to_string(count) + ".");
  }

  void CheckLimits() {
    const LimitTable table = CheckLimitTable(ReadText(mRoot / kLimits), mTests);
    for (const LimitTable::Problem& problem : table.problems)
      Report(std::string(kLimits), problem.line, problem.rule);
    mReport.limitsRead = table.rows;
  }

  void CheckPublicHeader(const std::string& aFile, std::string_view aText) {
    constexpr std::string_view kPragma = "#pragma once\n";
    if (!aText.starts_with(kPragma))
      Report(aFile, 1, "A public header begins with #pragma once.");
    else if (!aText.substr(kPragma.size()).starts_with("//"))
      Report(aFile, 2, "A comment that says why the header exists follows #pragma once.");
    const std::string folder = GetPublicFolder(aFile);
    const std::string name = aFile.substr((std::string(kLibraries) + folder + "/include/").size());
    if (!GetListedHeaders(folder).contains(name))
      Report(aFile, 1, "A public header is listed in the HEADERS of libraries/" + folder + "/CMakeLists.txt.");
  }

  std::set<std::string> GetListedHeaders(const std::string& aFolder) const {
    std::set<std::string> listed;
    for (const CMakeCall& call : ParseCMake(ReadText(mRoot / kLibraries / aFolder / "CMakeLists.txt")))
      if (call.name == "kr_add_library")
        for (const CMakeWord& word : GetWordsAfter(call, "HEADERS"))
          listed.insert(word.text);
    return listed;
  }

  void CheckInclude(const std::string& aFile, const Include& aInclude) {
    const std::optional<std::string> target = Resolve(aFile, aInclude.path);
    if (!target)
      CheckForeignInclude(aFile, aInclude);
    else if (aFile.starts_with(kLibraries))
      CheckOwnInclude(aFile, aInclude, *target);
  }

  void CheckForeignInclude(const std::string& aFile, const Include& aInclude) {
    const std::string folder = GetPublicFolder(aFile);
    const std::string shown = "<" + aInclude.path + ">";
    if (!folder.empty()) {
      if (!IsStandardHeader(aInclude.path) && !IsPublicToolkitHeader(folder, aInclude.path))
        Report(aFile, aInclude.line, "A public header shows no foreign library, not " + shown + ".");
    } else if (IsToolkitHeader(aInclude.path) && !MaySeeToolkit(aFile)) {
      Report(aFile, aInclude.line,
             "The toolkit is seen by krgui outside logic/ and by programs alone, not " + shown + ".");
    }
  }

  void CheckOwnInclude(const std::string& aFile, const Include& aInclude, const std::string& aTarget) {
    const Room* room = GetRoomOfFile(aFile);
    const Room* other = GetRoomOfFile(aTarget);
    if (room == nullptr)
      return;
    if (other == nullptr)
      Report(aFile, aInclude.line, "A library includes nothing outside the rooms, not " + aTarget + ".");
    else if (!MayInclude(*room, other->name))
      Report(aFile, aInclude.line, Deny(*room, "include", *other));
    else if (!GetPublicFolder(aFile).empty() && GetPublicFolder(aTarget).empty())
      Report(aFile, aInclude.line, "A public header includes public headers alone, not " + aTarget + ".");
    else if (other != room && GetLibraryFolder(aFile) != GetLibraryFolder(aTarget) && GetPublicFolder(aTarget).empty())
      Report(aFile, aInclude.line, "Of another room public headers alone are included, not " + aTarget + ".");
  }

  static std::string Deny(const Room& aRoom, std::string_view aVerb, const Room& aOther) {
    return std::string(aRoom.name) + " may not " + std::string(aVerb) + " " + std::string(aOther.name) + ".";
  }

  // The project's file that an include directive means; nothing for a foreign one. A path that begins with a room's
  // name counts as that room's even where the file is missing.
  std::optional<std::string> Resolve(const std::string& aFile, const std::string& aInclude) const {
    const std::string first = aInclude.substr(0, aInclude.find('/'));
    const std::string publicPath = std::string(kLibraries) + first + "/include/" + aInclude;
    if (first != aInclude && FindRoom(first) != nullptr)
      return publicPath;
    const fs::path candidates[] = {fs::path(aFile).parent_path() / aInclude,
                                   fs::path(kLibraries) / GetLibraryFolder(aFile) / aInclude};
    for (const fs::path& candidate : candidates) {
      const std::string path = candidate.lexically_normal().generic_string();
      if (mSources.contains(path))
        return path;
    }
    return std::nullopt;
  }

  void CheckList(const std::string& aFile) {
    for (const CMakeCall& call : ParseCMake(ReadText(mRoot / aFile))) {
      if (call.arguments.empty())
        continue;
      const Room* room = FindRoomOfTarget(call.arguments.front().text);
      if (room == nullptr)
        room = GetRoomOfFile(aFile);
      for (const CMakeWord& word : GetLinkedWords(call))
        CheckLink(aFile, room, {word.line, GetLinkedName(word.text)});
    }
  }

  static std::vector<CMakeWord> GetLinkedWords(const CMakeCall& aCall) {
    if (aCall.name == "target_link_libraries")
      return {aCall.arguments.begin() + 1, aCall.arguments.end()};
    if (!aCall.name.starts_with("kr_add_"))
      return {};
    std::vector<CMakeWord> words;
    for (const char* const keyword : {"DEPENDS", "FOREIGN", "SHOWN", "OBJECTS"}) {
      const std::vector<CMakeWord> named = GetWordsAfter(aCall, keyword);
      words.insert(words.end(), named.begin(), named.end());
    }
    return words;
  }

  void CheckLink(const std::string& aFile, const Room* aRoom, const CMakeWord& aItem) {
    const bool isLibrary = aFile.starts_with(kLibraries);
    const std::string place =
        isLibrary && aRoom != nullptr ? std::string(kLibraries) + std::string(aRoom->name) + "/" : aFile;
    if (IsToolkitTarget(aItem.text) && !MaySeeToolkit(place))
      Report(aFile, aItem.line,
             "The toolkit is linked by krgui outside logic/ and by programs alone, not " + aItem.text + ".");
    const Room* other = FindRoomOfTarget(aItem.text);
    if (isLibrary && aRoom != nullptr && other != nullptr && !MayInclude(*aRoom, other->name))
      Report(aFile, aItem.line, Deny(*aRoom, "link", *other));
  }

  fs::path mRoot;
  std::set<std::string> mSources;
  std::set<std::string> mLists;
  std::set<std::string> mTests;
  TreeReport mReport;
};

} // namespace

std::string Format(const Violation& aViolation) {
  return aViolation.file + ":" + std::to_string(aViolation.line) + ": " + aViolation.rule;
}

TreeReport CheckTree(const fs::path& aRoot) {
  return TreeChecker(aRoot).Run();
}

} // namespace archcheck
