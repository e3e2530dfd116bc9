#include "baresides.h"

#include "failing.h"
#include "socatline.h"

#include <QElapsedTimer>

#include <array>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace benchmarks {

namespace {

constexpr double kMegabyte = 1e6;

class Terminal {
public:
  explicit Terminal(const std::string& aPath) : mDescriptor(open(aPath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
  ~Terminal() { close(mDescriptor); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  int Get() const { return mDescriptor; }

private:
  const int mDescriptor;
};

double GetMegabytesPerSecond(std::size_t aBytes, const QElapsedTimer& aPassed) {
  return static_cast<double>(aBytes) / kMegabyte / (static_cast<double>(aPassed.nsecsElapsed()) / 1e9);
}

} // namespace

double MeasureBareReading(const std::string& aPath, const std::string& aBytes) {
  krtest::SocatLine line(aPath);
  const Terminal terminal(aPath);
  std::array<char, 4096> bytes;
  QElapsedTimer passed;
  passed.start();
  line.Send(aBytes);
  std::size_t sum = 0;
  while (sum < aBytes.size()) {
    const ssize_t count = read(terminal.Get(), bytes.data(), bytes.size());
    if (count <= 0)
      Fail("a bare loop cannot read.");
    sum += static_cast<std::size_t>(count);
  }
  return GetMegabytesPerSecond(sum, passed);
}

double MeasureBareWriting(const std::string& aPath, const std::string& aBytes) {
  krtest::SocatLine line(aPath);
  const Terminal terminal(aPath);
  QElapsedTimer passed;
  passed.start();
  const std::jthread writer([&] {
    std::size_t sum = 0;
    ssize_t count = 0;
    for (; count >= 0 && sum < aBytes.size(); sum += static_cast<std::size_t>(count))
      count = write(terminal.Get(), aBytes.data() + sum, aBytes.size() - sum);
  });
  if (line.Await(aBytes.size()).size() < aBytes.size())
    Fail("what a bare loop writes does not come whole.");
  return GetMegabytesPerSecond(aBytes.size(), passed);
}

} // namespace benchmarks
