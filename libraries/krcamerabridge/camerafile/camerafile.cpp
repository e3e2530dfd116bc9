#include "camerafile/camerafile.h"

#include "camerafile/camerafilereader.h"
#include "camerafile/filedescription.h"

#include "krbase/krwholefile.h"
#include "krpersistence/yamltext.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace krcamerabridge {

CameraFile::CameraFile() : mModel(std::make_shared<const FileModel>()) {}

KrResult CameraFile::Load(const KrString& aPath, CameraFile& aFile, KrStringList& aErrors) {
  aErrors = {};
  if (aPath.IsEmpty())
    return {KrResult::Code::InvalidInput, "No camera file is chosen."};
  std::string text;
  // One byte more than is taken shows the parser that there are too many.
  const KrResult read = KrReadWholeFile(aPath, krpersistence::kMostYamlBytes + 1, text);
  if (read == KrResult::Code::OutOfRange)
    text.assign(krpersistence::kMostYamlBytes + 1, ' ');
  else if (!read.IsOK())
    return {read.GetCode(), "Reading the camera file " + aPath + ": " + read.GetDescription()};
  return Parse(text, aPath, aFile, aErrors);
}

KrResult CameraFile::Parse(std::string_view aText, const KrString& aOrigin, CameraFile& aFile, KrStringList& aErrors) {
  aErrors = {};
  std::vector<std::string> errors;
  std::optional<FileModel> model = ReadCameraFileText(aText, errors);
  if (model) {
    aFile.mModel = std::make_shared<const FileModel>(std::move(*model));
    aFile.mOrigin = aOrigin;
    return {};
  }
  for (const std::string& error : errors)
    aErrors.Add(error);
  const std::string count = errors.size() == 1 ? "a mistake" : std::to_string(errors.size()) + " mistakes";
  return {KrResult::Code::BadData,
          "The camera file " + aOrigin + " has " + count + "; the first: " + KrString(errors.front())};
}

KrResult CameraFile::GetDescription(KrGenDescription& aDescription) const {
  return KrGenDescription::ReadFromMemory(DescribeCameraFile(*mModel), mOrigin, aDescription);
}

} // namespace krcamerabridge
