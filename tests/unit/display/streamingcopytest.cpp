#include "logic/display/streamingcopy.h"

#include <gtest/gtest.h>

#include <vector>

TEST(CopyStreaming, AnySizeAndPlace_CopiesExactlyTheseBytes) {
  constexpr std::size_t kSizes[] = {0,       1,       63,      4096,           (1 << 20) - 1, 1 << 20, (1 << 20) + 1,
                                    1066753, 2073600, 2088959, (1 << 20) + 63, 3000001};
  constexpr std::size_t kMost = 3000001 + 200;
  std::vector<std::uint8_t> source(kMost);
  for (std::size_t i = 0; i < kMost; ++i)
    source[i] = static_cast<std::uint8_t>((i * 2654435761u) >> 13);
  for (const std::size_t bytes : kSizes)
    for (const std::size_t to : {0, 1, 16, 63})
      for (const std::size_t from : {0, 1, 37}) {
        SCOPED_TRACE(testing::Message() << bytes << " bytes from " << from << " to " << to);
        std::vector<std::uint8_t> destination(kMost, 0xA5);
        std::vector<std::uint8_t> expected = destination;
        std::copy_n(source.begin() + static_cast<std::ptrdiff_t>(from), bytes,
                    expected.begin() + static_cast<std::ptrdiff_t>(to));

        krgui::CopyStreaming(destination.data() + to, source.data() + from, bytes);

        ASSERT_TRUE(destination == expected);
      }
}
