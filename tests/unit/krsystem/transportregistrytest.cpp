#include "faketransport.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TransportRegistry, RegisterTransport_Several_KeepsOrder) {
  const auto first = std::make_shared<FakeTransport>();
  const auto second = std::make_shared<FakeTransport>();

  krsystem::RegisterTransport(first);
  krsystem::RegisterTransport(second);

  EXPECT_THAT(krsystem::GetTransports(), ElementsAre(first, second));
  krsystem::UnregisterTransport(first);
  EXPECT_THAT(krsystem::GetTransports(), ElementsAre(second));
  krsystem::UnregisterTransport(second);
  EXPECT_THAT(krsystem::GetTransports(), IsEmpty());
}

TEST(TransportRegistry, RegisterTransport_TwiceOrNull_IsIgnored) {
  const auto transport = std::make_shared<FakeTransport>();

  krsystem::RegisterTransport(transport);
  krsystem::RegisterTransport(transport);
  krsystem::RegisterTransport(nullptr);

  EXPECT_THAT(krsystem::GetTransports(), ElementsAre(transport));
  krsystem::UnregisterTransport(transport);
}
