// The part of the generator block that shows: its window, its caption, and what it asks the user.

#include "com/entry.h"
#include "com/task_text.h"
#include "common/block_window.h"
#include "common/host_application.h"
#include "common/text.h"
#include "common/user_messages.h"
#include "ig/generator_node.h"
#include "ig/settings_dialog.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NIg {
namespace {

constexpr NSdk::WindowSize kPreferredSize = {600, 500};
constexpr NSdk::WindowSize kMinimumSize = {200, 180};

}  // namespace

// ---- what happens while it sends

void ZCANopenIGNode::ItemSent(const ItemPlace& place) {
  const NCanopen::ZMsgItemInfo* const item = FindItem(place.list, static_cast<std::uint32_t>(place.position));
  const auto before = mResults.Current();
  mResults.Sent(place, item && item->GetTypeCode() == NCanopen::kItemSdo);
  if (mView && before && *before != place.position) mView->ItemChanged({NSdk::kSequenceList, *before});
  if (mView) mView->ItemChanged(place);
  const auto events = mEvents;
  if (events) events->OnItemSent(place.list, static_cast<std::uint32_t>(place.position));
}

void ZCANopenIGNode::ItemFailed(const ItemPlace& place) {
  mResults.Failed(place);
  if (place.list == NSdk::kSequenceList) mResults.SequenceOver();
  if (mView) mView->ItemChanged(place);
  const auto events = mEvents;
  if (events) events->OnItemFailed(place.list, static_cast<std::uint32_t>(place.position));
}

void ZCANopenIGNode::TransferEnded(const ItemPlace& place, const SdoTransferResult& result) {
  mResults.Ended(place, result);
  if (mView) mView->ItemChanged(place);
  const auto events = mEvents;
  if (!events) return;
  events->OnTransferEnded(place.list, static_cast<std::uint32_t>(place.position), result.result, result.bytes,
                          result.abortCode);
}

// Results are those of the run that is under way, or was last.
void ZCANopenIGNode::OnActivityChanged(std::uint32_t before, std::uint32_t after) {
  constexpr std::uint32_t kCyclic = NSdk::kCyclicRunning | NSdk::kCyclicRequested;
  const std::uint32_t begun = after & ~before;
  if (begun & NSdk::kSequenceRunning) mResults.Clear(NSdk::kSequenceList);
  if ((begun & kCyclic) && !(before & kCyclic)) mResults.Clear(NSdk::kCyclicList);
  if (!(after & NSdk::kSequenceRunning)) mResults.SequenceOver();
  if (mView) mView->ActivityChanged();
}

// ---- caption

std::wstring ZCANopenIGNode::Caption() const {
  const std::uint32_t channel = mSettings.numbers.channel;
  if (mShowsOutput) return NResources::Print(NResources::LoadText(IDS_IG_OUTPUT), channel);
  const std::wstring file =
      mSequencePath.empty() ? NResources::LoadText(IDS_IG_UNTITLED) : NCommon::PathToWide(mSequencePath);
  return NResources::Print(NResources::LoadText(IDS_IG_CAPTION), channel, file);
}

void ZCANopenIGNode::ShowCaption() {
  if (mView) mView->SetCaption(Caption());
  if (mSite) mSite->BlockChanged();
}

// ---- sequence files and items, as the user handles them

bool ZCANopenIGNode::EditItem(NCanopen::ZMsgItemInfo& item, NSdk::GeneratorList list, void* parentWindow) {
  NCanopen::EditContext context;
  context.inCyclicList = list == NSdk::kCyclicList;
  context.channel = Channel();
  UpdateDataFolder();
  context.baseFolder = mGenerator.DataFolder();
  return item.Edit(parentWindow, &context);
}

bool ZCANopenIGNode::OpenSequence(void* parentWindow) {
  if (!ConfirmUnsaved(parentWindow)) return false;
  const std::wstring path =
      ChooseSequenceFile(parentWindow, /*saving=*/false, NCommon::PathToWide(mSequencePath));
  if (path.empty()) return false;
  if (SUCCEEDED(LoadSequence(path.c_str(), nullptr))) return true;
  TellThatLoadingFailed(path);
  return false;
}

bool ZCANopenIGNode::SaveSequenceAs(void* parentWindow) {
  const std::wstring path =
      ChooseSequenceFile(parentWindow, /*saving=*/true, NCommon::PathToWide(mSequencePath));
  if (path.empty()) return false;
  NCom::TaskText reason;
  const HRESULT result = SaveSequence(path.c_str(), reason.Receive());
  if (result == S_OK) return true;
  const int text = FAILED(result) ? IDS_IG_SAVE_FAILED : IDS_IG_SAVED_WITH_LOSS;
  NCommon::ShowUserMessage(NResources::Print(NResources::LoadText(text), path, reason.Text()),
                           NSdk::kMessageExclamation);
  return SUCCEEDED(result);
}

void ZCANopenIGNode::ReloadOnce() {
  const bool untouched = mSequencePath.empty() && !mEditing.IsModified();
  if (mReloaded || !untouched) return;
  mReloaded = true;
  ReloadSequence();
}

void ZCANopenIGNode::TellThatLoadingFailed(const std::wstring& path) const {
  const std::wstring prefix = mSettings.name + L": ";
  NCommon::ShowUserMessage(NResources::Print(NResources::LoadText(IDS_IG_LOAD_FAILED), prefix, path),
                           NSdk::kMessageExclamation);
}

bool ZCANopenIGNode::ConfirmUnsaved(void* parentWindow) {
  if (!mEditing.IsModified()) return true;
  const std::wstring question = NResources::Print(NResources::LoadText(IDS_IG_ASK_SAVE), mSettings.name);
  switch (AskAboutUnsaved(parentWindow, question)) {
    case UnsavedAnswer::Save:
      return SaveSequenceAs(parentWindow);
    case UnsavedAnswer::Discard:
      return true;
    case UnsavedAnswer::Cancel:
      break;
  }
  return false;
}

HRESULT ZCANopenIGNode::ConfirmLeaving(void* parentWindow) {
  return NCom::Entry([&]() -> HRESULT { return ConfirmUnsaved(parentWindow) ? S_OK : S_FALSE; });
}

// ---- settings of the host

void ZCANopenIGNode::ReadNumberBase() {
  if (const auto base = NCommon::HostNumberBase()) mHexDisplay = base == 16;
}

HRESULT ZCANopenIGNode::OnSettingsChanged() {
  return NCom::Entry([&] {
    ReadNumberBase();
    if (mView) mView->TextsChanged();
  });
}

// ---- the window

HRESULT ZCANopenIGNode::CreateBlockWindow(NSdk::IWindowSite* site) {
  return NCom::Entry([&]() -> HRESULT {
    if (!site) return E_POINTER;
    if (!mView) mView = MakeGeneratorView(*this);
    if (!mView) return E_FAIL;
    ReadNumberBase();
    mHostSettings.Begin<NSdk::ISettingEvents>(Identity());
    const HRESULT result = mView->Create(site);
    if (result != S_OK) return CloseWindow(), result;
    mView->SetCaption(Caption());
    return S_OK;
  });
}

void ZCANopenIGNode::CloseWindow() {
  if (mView) mView->Destroy();
  mHostSettings.End();
}

HRESULT ZCANopenIGNode::DestroyBlockWindow() {
  return NCom::Entry([&] { CloseWindow(); });
}

HRESULT ZCANopenIGNode::GetBlockWindow(void** window) {
  return NCommon::AnswerBlockWindow(mView ? mView->Handle() : nullptr, window);
}

HRESULT ZCANopenIGNode::GetSizes(NSdk::WindowSize* preferred, NSdk::WindowSize* minimum) {
  return NCommon::AnswerSizes(kPreferredSize, kMinimumSize, preferred, minimum);
}

HRESULT ZCANopenIGNode::Configure(void* parentWindow) {
  return NCom::Entry([&]() -> HRESULT {
    GeneratorNumbers numbers = mSettings.numbers;
    const HRESULT result = EditSettings(parentWindow, numbers);
    if (result != S_OK) return result;
    mSettings.numbers = numbers;
    mGenerator.SetNumbers(numbers);
    mShowsOutput = true;
    ShowCaption();
    return S_OK;
  });
}

}  // namespace NIg
