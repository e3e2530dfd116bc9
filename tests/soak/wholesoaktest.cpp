// The soak of the whole as scripts/soak.sh runs it, but for a few steps: it passes, and it tells when something is
// lost.

#include <gmock/gmock.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace {

struct Outcome {
  int exitCode = -1;
  std::string text;
};

Outcome RunSoak(const std::string& aOptions) {
  Outcome outcome;
  FILE* const output = ::popen((std::string(KR_SOAK_PROGRAM) + " " + aOptions + " 2>&1").c_str(), "r");
  if (!output)
    return outcome;
  char bytes[4096];
  while (const std::size_t size = std::fread(bytes, 1, sizeof bytes, output))
    outcome.text.append(bytes, size);
  const int status = ::pclose(output);
  outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

/// What was said of a figure at the end: "flat=1" or "flat=0".
std::string FindVerdict(const Outcome& aOutcome, const std::string& aFigure) {
  const std::size_t line = aOutcome.text.find("figure=" + aFigure + " ");
  if (line == std::string::npos)
    return "nothing";
  const std::size_t end = aOutcome.text.find('\n', line);
  return aOutcome.text.substr(aOutcome.text.rfind(' ', end) + 1, end - aOutcome.text.rfind(' ', end) - 1);
}

} // namespace

TEST(WholeSoak, FewSteps_PassWithoutGrowth) {
  const Outcome outcome = RunSoak("--seed 12");

  EXPECT_EQ(outcome.exitCode, 0) << outcome.text;
  EXPECT_EQ(FindVerdict(outcome, "threads"), "flat=1") << outcome.text;
}

TEST(WholeSoak, DeliberateLeak_IsToldOfEachFigure) {
  const Outcome outcome = RunSoak("--seed 12 --leak");

  EXPECT_EQ(outcome.exitCode, 1) << outcome.text;
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
  constexpr const char* kFigures[] = {"threads", "descriptors", "mapped_segments", "made_segments", "widgets"};
#else
  constexpr const char* kFigures[] = {"heap_MB",         "resident_MB",   "threads", "descriptors",
                                      "mapped_segments", "made_segments", "widgets"};
#endif
  for (const char* const figure : kFigures)
    EXPECT_EQ(FindVerdict(outcome, figure), "flat=0") << figure << "\n" << outcome.text;
  EXPECT_EQ(FindVerdict(outcome, "processes"), "flat=1");
  EXPECT_THAT(outcome.text, testing::HasSubstr("unexpected: [Soak] LeakALittle: Something was lost on purpose."));
}
