#include "plugin/bit_rates.h"

#include <gtest/gtest.h>

namespace {

TEST(BitRates, AreFoundByTheirTiming) {
  const struct {
    NPlugin::BitTiming timing;
    std::size_t position;
  } rows[] = {{{0x31, 0x1C}, 0}, {{0x03, 0x1C}, 3}, {{0x00, 0x1C}, 5}, {{0x00, 0x16}, 6},
              {{0x00, 0x14}, 7}, {{0x00, 0x1D}, 8}, {{0x1C, 0x00}, 8}};
  for (const auto& row : rows) EXPECT_EQ(NPlugin::FindBitRate(row.timing), row.position);
}

}  // namespace
