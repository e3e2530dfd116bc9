#include "settingscommands.h"

#include "camerasession.h"
#include "cancellation.h"
#include "featuresource.h"
#include "plaintext.h"
#include "textfile.h"

#include <algorithm>

namespace krtool {

namespace {

// More than the largest settings file that is taken, so that its own reader says what is wrong.
constexpr std::size_t kMaxFileBytes = std::size_t{17} << 20;

void TellProblems(const KrStringList& aProblems, std::ostream& aErrors) {
  for (const KrString& problem : aProblems)
    aErrors << "krtool: " << krapps::MakeField(problem) << '\n';
}

// The device was lost, or the command stopped: what there is is not the whole.
bool IsCutShort(const KrResult& aResult, const Cancellation& aCancellation) {
  return aCancellation.GetStop().IsRaised() || aResult == KrResult::Code::ConnectionLost ||
         aResult == KrResult::Code::Aborted;
}

int GetCutShortCode(const Cancellation& aCancellation) {
  return aCancellation.GetStop().IsRaised() ? GetExitCode(aCancellation.GetStop()) : 1;
}

} // namespace

int RunSave(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  if (KrResult checked = CheckTextFile(aCommandLine.file, aCommandLine.force); !checked.IsOK())
    return FailToWrite(aErrors, checked);
  FeatureSource source;
  if (KrResult opened = source.OpenToWrite(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);

  const Cancellation cancellation(source.GetArray());
  KrGenSettings settings;
  KrStringList problems;
  const KrResult stored = source.GetArray().StoreSettings(settings, problems);
  TellProblems(problems, aErrors);
  if (IsCutShort(stored, cancellation)) {
    aErrors << "krtool: the settings were not saved.\n";
    return GetCutShortCode(cancellation);
  }
  if (KrResult written = WriteTextFile(aCommandLine.file, aCommandLine.force, settings.ToText()); !written.IsOK())
    return FailToWrite(aErrors, written);
  if (settings.GetCount() == 0)
    aErrors << "krtool: the description marks no feature that can be read and set as one to save.\n";
  aOut << "settings=" << settings.GetCount() << " problems=" << problems.GetCount() << " file=" << aCommandLine.file
       << '\n';
  return problems.IsEmpty() ? 0 : 1;
}

int RunLoad(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  std::string text;
  KrGenSettings settings;
  KrResult read = ReadTextFile(aCommandLine.file, kMaxFileBytes, text);
  if (read.IsOK())
    read = Explain("reading \"" + aCommandLine.file + "\" failed", settings.FromText(text));
  if (!read.IsOK())
    return Fail(aErrors, read);
  FeatureSource source;
  if (KrResult opened = source.OpenToWrite(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);

  const Cancellation cancellation(source.GetArray());
  KrStringList problems;
  const KrResult restored = source.GetArray().RestoreSettings(settings, problems);
  TellProblems(problems, aErrors);
  if (IsCutShort(restored, cancellation)) {
    aErrors << "krtool: not all settings were set.\n";
    return GetCutShortCode(cancellation);
  }
  const std::size_t failed = std::min(problems.GetCount(), settings.GetCount());
  aOut << "settings=" << settings.GetCount() - failed << " problems=" << problems.GetCount() << '\n';
  return problems.IsEmpty() ? 0 : 1;
}

} // namespace krtool
