#pragma once
// The directory of Camera Link sockets: where it is, and that it is the user's alone.

#include "krbase/filedescriptor.h"
#include "krbase/krresult.h"

namespace krbase {

/// Opens the directory; makes it where there is none if aMakes, else NotFound. AccessDenied where it is another user's
/// or others may enter it.
KrResult OpenCLDirectory(bool aMakes, FileDescriptor& aDirectory);

} // namespace krbase
