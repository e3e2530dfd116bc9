#include "aravis/lentbuffer.h"

namespace krtransport {

GObjectPointer<ArvBuffer> LendBuffer(KrBuffer& aBuffer) {
  return GObjectPointer<ArvBuffer>(arv_buffer_new_full(aBuffer.GetSize(), aBuffer.GetDataPointer(), &aBuffer, nullptr));
}

KrBuffer* GetLender(ArvBuffer* aFrame) {
  // Aravis hands its user data out as constant; it is the buffer that LendBuffer got.
  return static_cast<KrBuffer*>(const_cast<void*>(arv_buffer_get_user_data(aFrame)));
}

} // namespace krtransport
