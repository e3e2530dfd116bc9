#pragma once
// Camera bridges by CL Protocol: the driver that comes with the library, and the lab's camera on a bulk port.

#include "camerabridgefixture.h"

#include "clprotocol/cldriverlist.h"

#include <gmock/gmock.h>

#include <cstdlib>

class CameraBridgeCLProtocolTest : public testing::Test {
protected:
  CameraBridgeCLProtocolTest() {
    setenv("KRGUI_CLPROTOCOL_HOST", KR_TEST_HOST, 1);
    unsetenv("GENICAM_CLPROTOCOL");
    krcamerabridge::SetCLDriverDirectories({KR_TEST_DRIVERS});
  }
  void SetUp() override {
    KrStringList templates;
    ASSERT_TRUE(IsFine(KrCameraBridge::GetCLProtocolTemplates(templates)));
    ASSERT_EQ(templates.GetCount(), 1u);
    mTemplate = templates[0];
  }
  KrResult Connect(KrCameraBridge& aBridge) {
    KrStringList ids;
    KrResult result = aBridge.ProbeCLProtocol(mTemplate, mCameraID, ids);
    if (!result.IsOK())
      return result;
    mXMLID = ids[0];
    return aBridge.ConnectCLProtocol(mTemplate, mXMLID);
  }

  KrString mTemplate;
  KrString mCameraID;
  KrString mXMLID;
};
