#include "xmlcommand.h"

#include "camerasession.h"
#include "featuresource.h"
#include "textfile.h"

namespace krtool {

int RunXml(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  const bool isToFile = !aCommandLine.file.empty();
  if (KrResult checked = isToFile ? CheckTextFile(aCommandLine.file, aCommandLine.force) : KrResult(); !checked.IsOK())
    return FailToWrite(aErrors, checked);
  KrGenDescription description;
  if (KrResult read = ReadDescription(aSystem, aCommandLine, description); !read.IsOK())
    return Fail(aErrors, read);
  if (!isToFile) {
    aOut << description.GetText();
    return 0;
  }
  const KrResult written = WriteTextFile(aCommandLine.file, aCommandLine.force, description.GetText());
  if (!written.IsOK())
    return FailToWrite(aErrors, written);
  aOut << "bytes=" << description.GetText().size() << " file=" << aCommandLine.file << '\n';
  return 0;
}

} // namespace krtool
