// The README's code as one program, which is compiled against the installed headers and not run. What a reader has
// around it stands here; its blocks follow each other in one function.

#include "krcamerabridge/krcamerabridge.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krdevice/krstream.h"
#include "krgui/krcamerabridgemanagerwnd.h"
#include "krgui/krdevicefinderwnd.h"
#include "krgui/krdisplaywnd.h"
#include "krgui/krgenbrowserwnd.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krgui/krserialterminalwnd.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <QApplication>

#include <iostream>

namespace {

void Check(const KrResult& aResult) {
  if (!aResult.IsOK())
    std::cerr << aResult.GetDescription().CStr() << '\n';
}

} // namespace

int main(int aCount, char** aArguments) {
  QApplication application(aCount, aArguments);
#include "readmeblocks.h" // Made by the test.
}
