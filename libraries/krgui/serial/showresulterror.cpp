#include "serial/showresulterror.h"

#include "frame/wnd.h"
#include "logic/serial/resulttext.h"
#include "platform/messagebox.h"
#include "platform/toqstring.h"

namespace krgui {

void ShowResultError(Wnd& aWindow, const KrString& aText, const KrResult& aResult) {
  ShowMessage(aWindow.GetWidget(), ToQString(FormatResultError(aText, aResult)), ToQString(aWindow.GetTitle()),
              MessageIcon::Exclamation);
}

} // namespace krgui
