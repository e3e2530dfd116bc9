#pragma once
// The simulated text camera whose answers have checksums, and the camera file that says so.

#include "camerabridgefixture.h"
#include "temporaryfolder.h"

#include <string>

/// The lab of a frame grabber with such a camera behind Serial0, and its file.
class CheckedTextLab {
public:
  CheckedTextLab() {
    std::string text = TemporaryFolder::ReadFile(kTextCameraFile);
    const std::string plain = "answerEnd: \"\\r\"";
    const std::size_t place = text.find(plain);
    EXPECT_NE(place, std::string::npos);
    TemporaryFolder::WriteFile(path, text.replace(place, plain.size(), "answerEnd: \"*{check}\\r\""));
  }

private:
  const TemporaryFolder mFolder; // Before what lies in it.

public:
  const std::string path = mFolder.GetFile("camera.yml");
  BridgeLab lab{MakeGrabberLab("protocol: text, checkedAnswers: true"), kMonoMAC};
};
