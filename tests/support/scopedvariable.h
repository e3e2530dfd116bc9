#pragma once
// A variable of the environment that has another value for as long as this lives, and then its own again. What the run
// of the tests has set keeps the tests away from the settings of whoever runs them.

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace krtest {

/// Thread: while no other thread reads the environment.
class ScopedVariable {
public:
  ScopedVariable(std::string aName, const std::string& aValue) : mName(std::move(aName)) {
    if (const char* before = std::getenv(mName.c_str()))
      mBefore = before;
    ::setenv(mName.c_str(), aValue.c_str(), 1);
  }
  ~ScopedVariable() {
    if (mBefore)
      ::setenv(mName.c_str(), mBefore->c_str(), 1);
    else
      ::unsetenv(mName.c_str());
  }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
  const std::string mName;
  std::optional<std::string> mBefore;
};

} // namespace krtest
