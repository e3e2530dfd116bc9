#pragma once
// A Tolvan camera file: what the commands of a camera with a protocol of its own do, as features. Speaking to the
// camera is left to CameraFilePort.

#include "camerafile/filemodel.h"

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgendescription.h"

#include <memory>
#include <string_view>

namespace krcamerabridge {

/// Thread: a value; different objects may be used from different threads. Ownership: shares its model, which never
/// changes.
///
///     CameraFile file;
///     KrStringList errors;
///     KrResult result = CameraFile::Load(path, file, errors);
///     if (result.IsOK())
///       result = file.GetDescription(description);
///     CameraFilePort port(file, line);
class CameraFile {
public:
  /// A file without features.
  CameraFile();

  /// Reads a file. BadData for one with mistakes: aErrors gets a line for each, "line:column: reason", in their order.
  /// NotFound, AccessDenied or SystemError for one that cannot be read. aFile is set on success only, aErrors is empty
  /// then.
  static KrResult Load(const KrString& aPath, CameraFile& aFile, KrStringList& aErrors);
  /// Takes a text from memory; aOrigin is named in the result.
  static KrResult Parse(std::string_view aText, const KrString& aOrigin, CameraFile& aFile, KrStringList& aErrors);

  const FileModel& GetModel() const { return *mModel; }
  /// The description of the features, over the registers of a CameraFilePort.
  KrResult GetDescription(KrGenDescription& aDescription) const;

private:
  friend class CameraFilePort;

  std::shared_ptr<const FileModel> mModel;
  KrString mOrigin;
};

} // namespace krcamerabridge
