#pragma once
// The GenICam description of what a camera file describes.

#include "camerafile/filemodel.h"

#include <string>

namespace krcamerabridge {

/// XML after schema 1.1, over the registers of a CameraFilePort. Any thread.
std::string DescribeCameraFile(const FileModel& aModel);

} // namespace krcamerabridge
