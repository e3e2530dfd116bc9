// The documents that show code and quote messages are held against the tree: code is an example's, messages are still
// said, links lead somewhere.

#include "documentparts.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace krtest {
namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;

const fs::path kRoot = PROJECT_ROOT;

std::string ReadText(const fs::path& aFile) {
  std::ifstream stream(aFile, std::ios::binary);
  EXPECT_TRUE(stream) << aFile;
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The files below some folders that have one of these endings.
std::vector<fs::path> FindFiles(const std::vector<const char*>& aFolders, const std::vector<std::string>& aEndings) {
  std::vector<fs::path> files;
  for (const char* const folder : aFolders) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(kRoot / folder))
      if (std::find(aEndings.begin(), aEndings.end(), entry.path().extension()) != aEndings.end())
        files.push_back(entry.path());
  }
  return files;
}

// Whether whole lines of some file are these.
bool HasLines(const std::vector<std::string>& aFiles, const std::string& aLines) {
  return std::any_of(aFiles.begin(), aFiles.end(),
                     [&](const std::string& aFile) { return ("\n" + aFile).find("\n" + aLines) != std::string::npos; });
}

} // namespace

TEST(DocumentParts, CodeBlocks_HaveLanguageLineAndText) {
  const auto blocks = ParseCodeBlocks("a\n```sh\none\n\ntwo\n```\nb\n```\nthree");

  ASSERT_EQ(blocks.size(), 2u);
  EXPECT_EQ(blocks[0].language, "sh");
  EXPECT_EQ(blocks[0].line, 2);
  EXPECT_EQ(blocks[0].text, "one\n\ntwo\n");
  EXPECT_EQ(blocks[1].language, "");
  EXPECT_EQ(blocks[1].text, "three\n");
}

TEST(DocumentParts, Quotations_AreJoinedUnlessSomethingPartsThem) {
  const auto quotations = ParseQuotations("> one\n> two\n\n> three\n```\n> code\n```\n");

  ASSERT_EQ(quotations.size(), 2u);
  EXPECT_EQ(quotations[0].text, "one two");
  EXPECT_EQ(quotations[0].line, 1);
  EXPECT_EQ(quotations[1].text, "three");
  EXPECT_EQ(quotations[1].line, 4);
}

TEST(DocumentParts, Literals_AreJoinedWithoutCommentsAndEscapes) {
  const std::string literals =
      ReadLiterals("// \"no\"\nf(\"one \"\n  \"two\", '\"', \"a \\\"b\\\"\\n\"); /* \"no\" */");

  EXPECT_EQ(literals, "\none two\na \"b\"\\n");
}

TEST(DocumentParts, Literals_AreFoundBehindSingleQuotesAndDigits) {
  EXPECT_EQ(ReadLiterals("f('\\'', 1'000, \"a\", R\"(no \")\", \"b\")"), "\na\nb");
}

TEST(DocumentParts, Message_IsThereWithAllItsPieces) {
  const std::string literals = "\nThe adapter \n is down.";

  EXPECT_TRUE(HasMessage(literals, "The adapter … is down."));
  EXPECT_FALSE(HasMessage(literals, "The adapter … is up."));
  EXPECT_FALSE(HasMessage(literals, "The adapter was down."));
}

TEST(DocumentParts, MessageOfTwoLiterals_IsThereUnlessOneIsAWord) {
  const std::string literals = "\nThe adapter has no address, \nso nothing can be reached\nThe \ncamera is well";

  EXPECT_TRUE(HasMessage(literals, "The adapter has no address, so nothing can be reached"));
  EXPECT_FALSE(HasMessage(literals, "The camera is well"));
}

TEST(Documents, CodeOfTheGuide_IsThatOfExamples) {
  std::vector<std::string> examples;
  for (const fs::path& file : FindFiles({"examples"}, {".cpp", ".h", ".txt", ".yaml"}))
    examples.push_back(ReadText(file));

  int compared = 0;
  for (const CodeBlock& block : ParseCodeBlocks(ReadText(kRoot / "docs/guide.md"))) {
    if (block.language == "sh") // Run as it stands, by the test of the guide's commands.
      continue;
    ++compared;
    EXPECT_TRUE(HasLines(examples, block.text)) << "docs/guide.md:" << block.line << ": no example has these lines:\n"
                                                << block.text;
  }
  EXPECT_GE(compared, 5);
}

TEST(Documents, MessagesOfTroubleshooting_AreStillSaid) {
  std::vector<std::string> sources;
  for (const fs::path& file : FindFiles({"libraries", "apps"}, {".cpp", ".h"}))
    sources.push_back(ReadLiterals(ReadText(file)));

  const auto quotations = ParseQuotations(ReadText(kRoot / "docs/troubleshooting.md"));
  EXPECT_GE(quotations.size(), 10u);
  for (const Quotation& quotation : quotations)
    EXPECT_TRUE(std::any_of(sources.begin(), sources.end(),
                            [&](const std::string& aSource) { return HasMessage(aSource, quotation.text); }))
        << "docs/troubleshooting.md:" << quotation.line << ": nothing says: " << quotation.text;
}

TEST(Documents, TargetsOfTheFuzzer_StandInTheirTable) {
  const std::string text = ReadText(kRoot / "docs/fuzzing.md");
  int targets = 0;
  for (const fs::directory_entry& seeds : fs::directory_iterator(kRoot / "fuzz/seeds")) {
    ++targets;
    EXPECT_NE(text.find("\n| " + seeds.path().filename().string() + " | "), std::string::npos) << seeds.path();
  }
  EXPECT_GE(targets, 20);
}

TEST(Documents, LinksToFiles_LeadSomewhere) {
  std::vector<fs::path> documents = FindFiles({"docs", "examples"}, {".md"});
  documents.push_back(kRoot / "README.md");
  documents.push_back(kRoot / "CONTRIBUTING.md");

  std::vector<std::string> broken;
  int followed = 0;
  for (const fs::path& document : documents) {
    const std::string text = ReadText(document);
    for (std::size_t at = text.find("]("); at != std::string::npos; at = text.find("](", at + 1)) {
      const std::string target = text.substr(at + 2, text.find_first_of(")#", at) - at - 2);
      if (target.empty() || target.find("://") != std::string::npos || target.find_first_of(" \n&*") != target.npos)
        continue; // A place in the same document, another host, or C++.
      ++followed;
      if (!fs::exists(document.parent_path() / target))
        broken.push_back(document.filename().string() + ": " + target);
    }
  }
  EXPECT_THAT(broken, IsEmpty());
  EXPECT_GE(followed, 50);
}

} // namespace krtest
