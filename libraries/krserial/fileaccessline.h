#pragma once
// A serial line as a file of the device (SFNC, File Access Control): opened, read and written at offset 0.
// Of its features the selectors are put back; open mode, offset and length, which are what an operation is given, are
// not.

#include "featurefinder.h"
#include "featuresteps.h"
#include "ifeatureline.h"
#include "serialmap.h"

#include <memory>

namespace krserial {

class FileAccessLine final : public IFeatureLine {
public:
  /// Null where the device lacks a feature or the file; aFinder says which of both, and whether it could be asked.
  static std::unique_ptr<FileAccessLine> Find(FeatureFinder& aFinder, const FileAccessNames& aNames,
                                              const KrString& aFile);

  KrResult Open() override;
  KrResult Close() override;
  KrResult Receive(std::vector<std::uint8_t>& aBytes) override;
  KrResult Transmit(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aTaken) override;
  void Rest() override;

private:
  /// The features, all there but for the offset.
  struct Features {
    KrGenParameterArray* array;
    KrGenEnum* file;
    KrGenEnum* operation;
    KrGenCommand* execute;
    KrGenEnum* openMode;
    KrGenInteger* offset;
    KrGenInteger* length;
    KrGenRegister* buffer;
    KrGenEnum* status;
    KrGenInteger* result;
  };

  FileAccessLine(const Features& aFeatures, KrString aFile);
  KrResult Select(const char* aOperation);
  KrResult OpenFile();
  KrResult Run();
  KrResult PutLength(std::size_t aMost, std::size_t& aLength);

  const Features mFeatures;
  const KrString mFile;
  SelectorHold mFileSelector;
  SelectorHold mOperationSelector;
  std::size_t mRoom = static_cast<std::size_t>(kMostTransferBytes); // Of the buffer, as far as is known.
};

} // namespace krserial
