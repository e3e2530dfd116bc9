#pragma once
// One run of a program as a child process, with what it writes.

#include <sys/types.h>

#include <string>
#include <vector>

/// Thread: one at a time. Ownership: owns the child process, and ends that alone.
class ProgramRun {
public:
  /// Starts a program by its path. One that cannot be started fails the test.
  ProgramRun(const std::string& aPath, const std::vector<std::string>& aArguments);
  /// Kills the program if it still runs.
  ~ProgramRun();
  ProgramRun(const ProgramRun&) = delete;
  ProgramRun& operator=(const ProgramRun&) = delete;

  /// Reads until a text has been written to standard error; false when the program ends before, or after a minute.
  bool AwaitError(const std::string& aText);
  /// The same of standard output.
  bool AwaitOutput(const std::string& aText);
  void Signal(int aSignal) const;
  /// Closes the end that standard output is read from; what the program writes then finds no reader.
  void CloseOutput();
  /// Reads to the program's end and gives its exit code; -1 when a signal ended it, or after a minute.
  int Finish();
  /// The signal that ended the program; 0 when it exited, or has not ended.
  int GetEndSignal() const { return mEndSignal; }

  const std::string& GetOutput() const { return mOutput; }
  const std::string& GetErrors() const { return mErrors; }

private:
  bool Await(const std::string& aWritten, const std::string& aText);
  bool ReadSome();

  pid_t mProcess = -1;
  int mEndSignal = 0;
  int mOutputEnd = -1;
  int mErrorEnd = -1;
  std::string mOutput;
  std::string mErrors;
};
