#include "viewerprogram.h"

#include "failing.h"
#include "spawning.h"
#include "timing.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <sstream>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace benchmarks {

namespace {

constexpr std::chrono::seconds kLimit{60};
constexpr std::chrono::milliseconds kPause{20};

std::string MakeFolder() {
  std::string folder = (std::filesystem::temp_directory_path() / "viewer-settings-XXXXXX").string();
  if (!::mkdtemp(folder.data()))
    Fail("no folder can be made for the viewer's settings.");
  return folder;
}

pid_t Spawn(std::vector<std::string> aCommandLine, const std::string& aSettingsFolder) {
  const std::string program = aCommandLine.front();
  aCommandLine.insert(aCommandLine.begin(),
                      {"setpriv", "--pdeathsig", "KILL", "env", "XDG_CONFIG_HOME=" + aSettingsFolder});
  const pid_t process = Spawning(std::move(aCommandLine)).DiscardOutput().Start();
  if (process < 0)
    Fail(program + " does not start.");
  return process;
}

struct Close {
  void operator()(std::FILE* aPipe) const { ::pclose(aPipe); }
};

// What xdotool answers to a command; empty where it finds nothing.
std::string AskXdotool(const std::string& aCommand) {
  const std::unique_ptr<std::FILE, Close> pipe(::popen(("xdotool " + aCommand + " 2>/dev/null").c_str(), "r"));
  if (!pipe)
    Fail("xdotool does not start.");
  std::string answer;
  std::array<char, 256> piece{};
  while (std::fgets(piece.data(), piece.size(), pipe.get()))
    answer += piece.data();
  return answer;
}

template <typename Condition>
void Await(const Condition& aCondition, const char* aWhat) {
  const auto limit = std::chrono::steady_clock::now() + kLimit;
  while (!aCondition()) {
    if (std::chrono::steady_clock::now() > limit)
      Fail(std::string("within a minute ") + aWhat + ".");
    std::this_thread::sleep_for(kPause);
  }
}

} // namespace

ViewerProgram::ViewerProgram(std::vector<std::string> aCommandLine)
    : mSettingsFolder(MakeFolder()), mProcess(Spawn(std::move(aCommandLine), mSettingsFolder)) {}

ViewerProgram::~ViewerProgram() {
  ::kill(mProcess, SIGTERM);
  const auto limit = std::chrono::steady_clock::now() + kLimit;
  while (::waitpid(mProcess, nullptr, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > limit)
      ::kill(mProcess, SIGKILL);
    std::this_thread::sleep_for(kPause);
  }
  std::error_code ignored; // What stays is in the folder for temporary files.
  std::filesystem::remove_all(mSettingsFolder, ignored);
}

double ViewerProgram::GetProcessorMs() const {
  clockid_t clock{};
  if (::clock_getcpuclockid(mProcess, &clock) != 0)
    Fail("the viewer has ended.");
  return GetClockMs(clock);
}

void ViewerProgram::AwaitWindow() {
  Await(
      [this] {
        std::istringstream windows(AskXdotool("search --onlyvisible --pid " + std::to_string(mProcess)));
        windows >> mWindow;
        return !mWindow.empty();
      },
      "the viewer showed no window");
}

ScreenArea ViewerProgram::GetWindowArea() const {
  std::istringstream lines(AskXdotool("getwindowgeometry --shell " + mWindow));
  ScreenArea geometry;
  std::string line;
  while (std::getline(lines, line)) {
    const std::size_t sign = line.find('=');
    if (sign == std::string::npos)
      continue;
    const std::string name = line.substr(0, sign);
    const int value = std::atoi(line.c_str() + sign + 1);
    if (name == "X")
      geometry.x = value;
    else if (name == "Y")
      geometry.y = value;
    else if (name == "WIDTH")
      geometry.width = value;
    else if (name == "HEIGHT")
      geometry.height = value;
  }
  return geometry;
}

int ViewerProgram::GetWindowHeight() const {
  return GetWindowArea().height;
}

void ViewerProgram::PlaceWindow(int aWidth, int aHeight) const {
  const std::string size = std::to_string(aWidth) + " " + std::to_string(aHeight);
  AskXdotool("windowsize " + mWindow + " " + size + " windowmove " + mWindow + " 20 20 windowactivate " + mWindow);
  Await([&] { return GetWindowArea().width == aWidth && GetWindowArea().height == aHeight; },
        "the viewer's window did not get its size");
}

void ViewerProgram::Click(WindowPoint aPoint) const {
  AskXdotool("mousemove --window " + mWindow + " " + std::to_string(aPoint.x) + " " + std::to_string(aPoint.y) +
             " click 1");
}

void ViewerProgram::PressKey(const std::string& aKey) const {
  AskXdotool("windowactivate --sync " + mWindow + " key " + aKey);
}

WindowPoint ViewerProgram::ToScreen(WindowPoint aPoint) const {
  const ScreenArea geometry = GetWindowArea();
  return {geometry.x + aPoint.x, geometry.y + aPoint.y};
}

} // namespace benchmarks
