// The tables that the lines of figures become.

#include "figure.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace benchmarks {
namespace {

struct Outcome {
  std::string output;
  int status = -1;
};

Outcome MakeTables(const std::string& aLines) {
  const std::string file = testing::TempDir() + "figures-" + std::to_string(::getpid());
  std::ofstream(file) << aLines;
  std::FILE* const pipe = ::popen((std::string(FIGURES) + " '" + file + "' 2>&1").c_str(), "r");
  Outcome outcome;
  std::array<char, 256> piece{};
  while (std::fgets(piece.data(), piece.size(), pipe))
    outcome.output += piece.data();
  outcome.status = WEXITSTATUS(::pclose(pipe));
  std::remove(file.c_str());
  return outcome;
}

constexpr const char* kHeader =
    "| figure | ours | peer | of the peer | limit | of the limit |\n|---|---|---|---|---|---|\n";

} // namespace

TEST(FigureTables, AFigure_IsARowOfItsBenchmark) {
  const Figure figure{"open_finder", 30, "ms", Peer{"empty_dialog", 20}, Limit{"prompt", 150}};

  const Outcome outcome = MakeTables("# windows\n" + FormatLine(figure) + "\n");

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "`windows`:\n\n" + std::string(kHeader) +
                                "| open_finder | 30 ms | 20 ms, empty dialog | 1.5 | 150 ms, prompt | 0.2 |\n");
}

TEST(FigureTables, WhatIsNotThere_IsAnEmptyField) {
  const Outcome outcome = MakeTables("# sinks\n" + FormatLine({"register_growth", 1.1, "times"}) + "\n");

  EXPECT_THAT(outcome.output, testing::EndsWith("| register_growth | 1.1 times |  |  |  |  |\n"));
}

TEST(FigureTables, LinesOfNoNamedBenchmark_AreATableWithoutAName) {
  const Outcome outcome = MakeTables(FormatLine({"a", 1, "ms"}) + "\n");

  EXPECT_EQ(outcome.output, std::string(kHeader) + "| a | 1 ms |  |  |  |  |\n");
}

TEST(FigureTables, EachBenchmark_HasATable) {
  const std::string line = FormatLine({"a", 1, "ms"}) + "\n";

  const std::string other = FormatLine({"b", 2, "ms"}) + "\n";

  const Outcome outcome = MakeTables("# one\n" + line + "# krviewer: what a turn came to\n" + other + "# two\n" + line);

  const std::string row = "| a | 1 ms |  |  |  |  |\n";
  EXPECT_EQ(outcome.output,
            "`one`:\n\n" + (kHeader + row) + "| b | 2 ms |  |  |  |  |\n" + "\n`two`:\n\n" + kHeader + row);
}

TEST(FigureTables, AFigureWithSeveralPeers_IsOneRow_InWhichTheyFollowOneAnother) {
  const Outcome outcome = MakeTables(FormatLine({"a", 4, "ms", Peer{"plain", 8}}) + "\n" + FormatLine({"b", 1, "ms"}) +
                                     "\n" + FormatLine({"a", 4, "ms", Peer{"other", 8}}) + "\n" +
                                     FormatLine({"a", 5, "ms", Peer{"third", 2}, Limit{"wish", 10}}) + "\n");

  EXPECT_EQ(outcome.output, std::string(kHeader) +
                                "| a | 4 ms; 5 ms | 8 ms, plain; 8 ms, other; 2 ms, third | 0.5; 0.5; 2.5 | 10 ms, "
                                "wish | 0.5 |\n| b | 1 ms |  |  |  |  |\n");
}

TEST(FigureTables, ALineThatIsCutOff_IsAFailure) {
  const Outcome outcome = MakeTables("# one\nfigure=a value=1\n");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, testing::HasSubstr("this is no figure: figure=a value=1"));
}

TEST(FigureTables, NoFigure_IsAFailure) {
  const Outcome outcome = MakeTables("# one\n");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, testing::HasSubstr("there is no figure"));
}

} // namespace benchmarks
