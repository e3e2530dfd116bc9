#include "limittable.h"

#include "includeparser.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <optional>

namespace archcheck {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kTestHeadings[] = {"test", "shown by"};

std::string_view Trim(std::string_view aText) {
  const std::size_t start = std::min(aText.find_first_not_of(kBlanks), aText.size());
  aText.remove_prefix(start);
  return aText.substr(0, aText.find_last_not_of(kBlanks) + 1);
}

bool IsWordCharacter(char aCharacter) {
  return std::isalnum(static_cast<unsigned char>(aCharacter)) != 0 || aCharacter == '_';
}

// The cells of a line of a table; none for another line.
std::vector<std::string_view> SplitRow(std::string_view aLine) {
  std::vector<std::string_view> cells;
  aLine = Trim(aLine);
  if (aLine.size() < 2 || aLine.front() != '|' || aLine.back() != '|')
    return cells;
  aLine.remove_prefix(1);
  while (!aLine.empty()) {
    const std::size_t end = aLine.find('|');
    cells.push_back(Trim(aLine.substr(0, end)));
    aLine.remove_prefix(end + 1);
  }
  return cells;
}

// What stands between back quotes.
std::vector<std::string_view> FindQuoted(std::string_view aCell) {
  std::vector<std::string_view> quoted;
  for (std::size_t start = aCell.find('`'); start != aCell.npos;) {
    const std::size_t end = aCell.find('`', start + 1);
    if (end == aCell.npos)
      break;
    quoted.push_back(aCell.substr(start + 1, end - start - 1));
    start = aCell.find('`', end + 1);
  }
  return quoted;
}

// Takes a word and the sign behind it off the beginning.
std::optional<std::string> TakeWord(std::string_view& aText, char aEnd) {
  aText.remove_prefix(std::min(aText.find_first_not_of(kBlanks), aText.size()));
  const auto* const end = std::find_if_not(aText.begin(), aText.end(), IsWordCharacter);
  std::string word(aText.begin(), end);
  aText.remove_prefix(word.size());
  aText.remove_prefix(std::min(aText.find_first_not_of(kBlanks), aText.size()));
  if (word.empty() || aText.empty() || aText.front() != aEnd)
    return std::nullopt;
  aText.remove_prefix(1);
  return word;
}

bool IsTestHeading(std::string_view aCell) {
  return std::find(std::begin(kTestHeadings), std::end(kTestHeadings), aCell) != std::end(kTestHeadings);
}

bool IsRuler(std::string_view aCell) {
  return !aCell.empty() && aCell.find_first_not_of("-:") == aCell.npos;
}

void CheckRow(const std::vector<std::string_view>& aCells, std::size_t aColumns, int aLine,
              const std::set<std::string>& aTests, LimitTable& aTable) {
  ++aTable.rows;
  if (aCells.size() != aColumns) {
    aTable.problems.push_back({aLine, "A row has as many cells as its table has headings."});
    return;
  }
  const std::vector<std::string_view> tests = FindQuoted(aCells.back());
  if (tests.empty())
    aTable.problems.push_back({aLine, "A limit names the test that shows it."});
  for (const std::string_view test : tests)
    if (!aTests.contains(std::string(test)))
      aTable.problems.push_back({aLine, "There is no test " + std::string(test) + "."});
}

} // namespace

void AddTests(std::string_view aSource, std::set<std::string>& aTests) {
  const std::string code = BlankCommentsAndLiterals(aSource);
  for (const std::string_view macro : {"TEST(", "TEST_F(", "TEST_P("})
    for (std::size_t at = code.find(macro); at != code.npos; at = code.find(macro, at + 1)) {
      std::string_view rest = std::string_view(code).substr(at + macro.size());
      if (at > 0 && IsWordCharacter(code[at - 1]))
        continue;
      const std::optional<std::string> suite = TakeWord(rest, ',');
      const std::optional<std::string> name = suite ? TakeWord(rest, ')') : std::nullopt;
      if (name)
        aTests.insert(*suite + "." + *name);
    }
}

LimitTable CheckLimitTable(std::string_view aDocument, const std::set<std::string>& aTests) {
  LimitTable table;
  std::size_t columns = 0; // Of the table of limits that a line is in; 0 outside of them.
  bool isInTable = false;
  for (int line = 1; !aDocument.empty(); ++line) {
    const std::size_t end = std::min(aDocument.find('\n'), aDocument.size());
    const std::vector<std::string_view> cells = SplitRow(aDocument.substr(0, end));
    aDocument.remove_prefix(std::min(end + 1, aDocument.size()));
    if (cells.empty())
      columns = 0;
    else if (!isInTable)
      columns = IsTestHeading(cells.back()) ? cells.size() : 0;
    else if (columns > 0 && !IsRuler(cells.front()))
      CheckRow(cells, columns, line, aTests, table);
    isInTable = !cells.empty();
  }
  return table;
}

} // namespace archcheck
