#include "gencp/sha1.h"

#include <glib.h>

#include <memory>

namespace krcamerabridge {

Sha1 MakeSha1(std::string_view aBytes) {
  const std::unique_ptr<GChecksum, decltype(&g_checksum_free)> checksum(g_checksum_new(G_CHECKSUM_SHA1),
                                                                        &g_checksum_free);
  g_checksum_update(checksum.get(), reinterpret_cast<const guchar*>(aBytes.data()), static_cast<gssize>(aBytes.size()));
  Sha1 digest{};
  gsize size = digest.size();
  g_checksum_get_digest(checksum.get(), digest.data(), &size);
  return digest;
}

} // namespace krcamerabridge
