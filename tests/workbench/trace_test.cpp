// The trace without its window: what is kept, what a filter finds, what a pause holds still.

#include <gmock/gmock.h>

#include "host/workbench/service.h"
#include "host/workbench/trace_texts.h"
#include "host/workbench/trace_view.h"

namespace {

using namespace NWorkbench;
using testing::ElementsAre;

NRuntime::SeenFrame Seen(std::uint32_t identifier, std::uint8_t first = 0, std::uint32_t flags = 2) {
  NRuntime::SeenFrame seen{
      1, NSdk::kCanReceived, std::chrono::milliseconds(1234), {identifier, {first, 0xAB}, flags}};
  return seen;
}

std::vector<std::uint32_t> Identifiers(const TraceView& view) {
  std::vector<std::uint32_t> identifiers;
  for (std::size_t position = 0; position < view.Count(); ++position) {
    const TraceRow* row = view.At(position);
    identifiers.push_back(row ? row->identifier : 0xFFFF);
  }
  return identifiers;
}

void Add(TraceStore& store, std::uint32_t first, std::uint32_t last) {
  for (std::uint32_t identifier = first; identifier <= last; ++identifier) store.Add(Seen(identifier));
}

TEST(Trace, TheNewestRowsAreKeptAndFiltered) {
  TraceStore store(4);
  TraceView view(store);
  Add(store, 0x601, 0x606);
  EXPECT_TRUE(view.Update(100));
  EXPECT_THAT(Identifiers(view), ElementsAre(0x603, 0x604, 0x605, 0x606));

  view.SetFilter(L" sdo  604");
  EXPECT_FALSE(view.Update(1)) << "only one row was looked at";
  EXPECT_TRUE(view.Update(100));
  EXPECT_THAT(Identifiers(view), ElementsAre(0x604));
  Add(store, 0x607, 0x60A);
  view.Update(100);
  EXPECT_THAT(Identifiers(view), ElementsAre()) << "the row has made room for newer ones";
  view.SetFilter(L"");
  view.Update(100);
  EXPECT_THAT(Identifiers(view), ElementsAre(0x607, 0x608, 0x609, 0x60A));
  store.Clear();
  view.Reset();
  view.Update(100);
  EXPECT_EQ(view.Count(), 0u);
}

TEST(Trace, APauseHoldsTheViewAndCanBeFilteredAnew) {
  TraceStore store(4);
  TraceView view(store);
  Add(store, 1, 3);
  view.Update(100);
  view.Pause(true);
  Add(store, 4, 5);
  view.Update(100);
  EXPECT_THAT(Identifiers(view), ElementsAre(0xFFFF, 2, 3)) << "the first row has been overwritten";
  view.SetFilter(L"003");
  view.Update(100);
  EXPECT_THAT(Identifiers(view), ElementsAre(3));
  view.SetFilter(L"");
  view.Pause(false);
  view.Update(100);
  EXPECT_THAT(Identifiers(view), ElementsAre(2, 3, 4, 5));
}

TEST(Trace, ALineSaysWhatTheFrameIs) {
  TraceStore store;
  store.Add(Seen(0x585, 0x4B));
  store.Add(Seen(0x12345, 0, NSdk::kFrameExtended));
  store.Add(Seen(0x705, 0, NSdk::kFrameRemote | 1));
  EXPECT_EQ(TraceLine(store.Row(0), 16), L"1.234000\t1\tRx\t585\tSDO\t05\t2\t4B AB");
  EXPECT_EQ(TraceLine(store.Row(0), 10), L"1.234000\t1\tRx\t1413\tSDO\t5\t2\t 75 171");
  EXPECT_EQ(TraceLine(store.Row(1), 16), L"1.234000\t1\tRx\t00012345x\t\t\t0\t");
  EXPECT_EQ(TraceLine(store.Row(2), 16), L"1.234000\t1\tRx\t705\tHeartbeat\t05\t1\tremote");
}

TEST(Trace, ServicesGoByThePredefinedConnectionSet) {
  const std::pair<std::uint32_t, Service> cases[] = {
      {0x000, Service::Nmt},       {0x001, Service::Other},     {0x080, Service::Sync},
      {0x081, Service::Emergency}, {0x100, Service::Time},      {0x181, Service::Pdo},
      {0x57F, Service::Pdo},       {0x580, Service::Other},     {0x5FF, Service::Sdo},
      {0x601, Service::Sdo},       {0x701, Service::Heartbeat}, {0x7E4, Service::Lss},
      {0x7FF, Service::Other}};
  for (const auto& [identifier, service] : cases) {
    EXPECT_EQ(ServiceOf(identifier, false), service) << std::hex << identifier;
    EXPECT_EQ(ServiceOf(identifier, true), Service::Other) << std::hex << identifier;
  }
}

}  // namespace
