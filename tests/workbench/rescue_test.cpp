// Unsaved work outlives the program that held it.

#include <gmock/gmock.h>

#include "host/runtime/asio_loop.h"
#include "host/workbench/work_keeper.h"
#include "sdk/generator.h"
#include "sdk/unsaved_work.h"
#include "tests/test_folder.h"

namespace {

using namespace NWorkbench;
using testing::IsEmpty;
using testing::SizeIs;

UnsavedWork Work(const char* file, bool isModified) {
  UnsavedWork work = {file, isModified, {}, {}};
  work.document.channels = {{1, "virtual"}};
  work.blocks[1];
  return work;
}

RescueFolder::WriteBlock Writing(const char* text) {
  return [text](std::size_t, const std::filesystem::path& file) {
    return std::filesystem::exists(NTest::WriteFile(file, text));
  };
}

TEST(RescueFolder, OffersWholeCopiesOfProcessesThatAreGone) {
  const NTest::TestFolder folder;
  const auto root = folder / "rescue";
  {
    RescueFolder older(root, 7);
    older.Keep(Work("older ä.json", true), 100, Writing("old"));
    older.Keep(Work("older ä.json", true), 101, Writing("not so old"));
    EXPECT_THROW(older.Keep(Work("", true), 102, [](auto, auto&) { return false; }), std::runtime_error);
    RescueFolder newer(root, 7);
    newer.Keep(Work("", false), 200, Writing("new"));
    EXPECT_NE(newer.Name(), older.Name());
    EXPECT_THAT(RescueFolder::FindLeft(root), IsEmpty()) << "their process is there";
  }
  std::filesystem::create_directories(root / "8");
  {
    auto left = RescueFolder::FindLeft(root);
    ASSERT_THAT(left, SizeIs(2));
    EXPECT_FALSE(std::filesystem::exists(root / "8")) << "nothing was kept in it";
    EXPECT_THAT(RescueFolder::FindLeft(root), IsEmpty()) << "who has found them holds them";
    EXPECT_FALSE(RescueFolder::Claim(root, left[0].Name()));
    EXPECT_EQ(left[0].Time(), 200);
    EXPECT_TRUE(left[0].Read().file.empty());
    const UnsavedWork work = left[1].Read();
    EXPECT_EQ(work.file, std::filesystem::path("older ä.json"));
    EXPECT_TRUE(work.isModified);
    EXPECT_EQ(work.document, Work("", true).document);
    EXPECT_EQ(NTest::ReadFile(work.blocks.at(1)), "not so old");
    left[0].Discard();
  }
  ASSERT_THAT(RescueFolder::FindLeft(root), SizeIs(1));
  NTest::WriteFile(root / "7" / "contents.txt", "of another program");
  EXPECT_THROW(RescueFolder::FindLeft(root).at(0).Read(), std::runtime_error);
}

class Silent final : public WorkbenchEvents {
 public:
  void OnSetupChanged() override {}
  void OnBlockLeaving(IUnknown&) override {}
  void OnMeasurementChanged() override {}
  void OnCannotStart(const std::string&) override {}
  void OnTrouble(const std::string&) override {}
};

WorkbenchOptions Options(const std::filesystem::path& module) {
  return {module, module.parent_path(), [] { return std::make_unique<NRuntime::AsioLoop>(); }};
}

template <class Interface>
NRuntime::ComPtr<Interface> Generator(Workbench& workbench) {
  return NRuntime::Query<Interface>(workbench.Blocks().at(1).object);
}

TEST(WorkKeeper, WhatWasNotSavedIsThereAgain) {
  const NTest::TestFolder folder;
  const auto root = folder / "rescue";
  const auto file =
      NTest::WriteFile(folder / "plant.json", R"({"format": 1, "variant": "halvard", "language": 1,
      "numberBase": 10, "channels": [{"number": 1, "bus": "virtual"}], "blocks": [
      {"progId": "HarlowPlugIn.CANopenScanner", "settings": {}},
      {"progId": "HarlowPlugIn.CANopenIG", "settings": {"Name": "Sender", "LastCOIGSequenceRel": "own.seq"}}]})");
  const auto lists = NTest::WriteFile(folder / "lists.seq", R"(<?xml version="1.0"?><CANopenIG><Sequence>
      <SYNC COBID="0x80" Enabled="1"/><SYNC COBID="0x80" Enabled="0"/></Sequence><CyclicMsgs/></CANopenIG>)");
  const std::string saved = NTest::ReadFile(file);
  Silent events;
  {
    Workbench workbench(Options(OSTREL_MODULE), events);
    workbench.Open(file);
    WorkKeeper keeper(workbench, root, 1);
    keeper.Update(workbench.Capture(), 1);
    EXPECT_FALSE(std::filesystem::exists(root)) << "there is nothing to lose";
    ASSERT_EQ(Generator<NSdk::IWorkCopy>(workbench)->TakeCopy(lists.wstring().c_str()), S_OK);
    workbench.SetNumberBase(16);
    keeper.Update(workbench.Capture(), 2);
  }
  EXPECT_EQ(NTest::ReadFile(file), saved);

  auto left = RescueFolder::FindLeft(root);
  ASSERT_THAT(left, SizeIs(1));
  Workbench withoutModule(Options(folder / "missing.hpi"), events);
  EXPECT_THAT(WorkKeeper::TakeUp(withoutModule, left[0].Read()), testing::ElementsAre(L"Sender"));
  Workbench workbench(Options(OSTREL_MODULE), events);
  EXPECT_THAT(WorkKeeper::TakeUp(workbench, left[0].Read()), IsEmpty());
  EXPECT_TRUE(workbench.IsModified());
  EXPECT_EQ(workbench.File(), file);
  EXPECT_EQ(workbench.Settings().numberBase, 16u);
  EXPECT_THAT(workbench.CaptionOf(workbench.Blocks()[1]), testing::EndsWith(L"own.seq"));
  std::uint32_t count = 0, state = 0;
  Generator<NSdk::IGenerator>(workbench)->GetItemCount(NSdk::kSequenceList, &count);
  Generator<NSdk::IWorkCopy>(workbench)->GetUnsavedState(&state);
  EXPECT_EQ(count, 2u);
  EXPECT_NE(state, 0u);

  // The lists alone, then nothing.
  workbench.Save(workbench.File());
  WorkKeeper keeper(workbench, root, 2);
  keeper.Update(workbench.Capture(), 3);
  EXPECT_TRUE(std::filesystem::exists(root / keeper.FolderName()));
  const auto kept = folder / "kept.seq";
  ASSERT_EQ(Generator<NSdk::IGenerator>(workbench)->SaveSequence(kept.wstring().c_str(), nullptr), S_OK);
  EXPECT_EQ(Generator<NSdk::IWorkCopy>(workbench)->WriteCopy(lists.wstring().c_str()), S_FALSE);
  workbench.Save(workbench.File());
  keeper.Update(workbench.Capture(), 4);
  EXPECT_FALSE(std::filesystem::exists(root / keeper.FolderName()));
}

}  // namespace
