// Threads may still use a library while the process ends: nothing of it is destroyed then. What is to be is listed
// here, with its reason.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Exception {
  std::string_view object; ///< The file that it is compiled to.
  const char* reason;
};

constexpr std::array kExceptions = {
    Exception{"backgroundtask.cpp.o", "The end of the process waits for work that windows gave up."},
};

/// The archives' objects that have something destroyed at the process' end, as "libkrgui.a:inputhold.cpp.o:".
std::vector<std::string> FindDestroyed() {
  const std::string command = "'" KR_NM "' -A " KR_ARCHIVES;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(popen(command.c_str(), "r"), pclose);
  std::vector<std::string> objects;
  std::array<char, 65536> line;
  int symbols = 0;
  for (; output && std::fgets(line.data(), line.size(), output.get()) != nullptr; ++symbols) {
    std::istringstream words(line.data());
    std::string object;
    std::string kind;
    std::string symbol;
    if (words >> object >> kind >> symbol && kind == "U" && symbol == "__cxa_atexit")
      objects.push_back(object.substr(object.find_last_of('/') + 1));
  }
  EXPECT_GT(symbols, 10'000) << "the libraries' objects were not read";
  return objects;
}

} // namespace

TEST(ExitObjects, Libraries_HaveNoneBesideThoseWithAReason) {
  for (const std::string& object : FindDestroyed())
    EXPECT_TRUE(std::ranges::any_of(
        kExceptions,
        [&](const Exception& aRow) { return object.find(":" + std::string(aRow.object) + ":") != std::string::npos; }))
        << object << " has an object that is destroyed while the process ends";
}

TEST(ExitObjects, Exceptions_AreStillThere) {
  const std::vector<std::string> objects = FindDestroyed();

  for (const Exception& row : kExceptions)
    EXPECT_THAT(objects, testing::Contains(testing::HasSubstr(std::string(row.object)))) << row.reason;
}
