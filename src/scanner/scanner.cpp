#include "scanner/scanner.h"

#include <new>

#include "canopen/vocabulary.h"
#include "com/entry.h"
#include "com/task_text.h"
#include "common/block_window.h"
#include "common/text.h"
#include "resources/resource_ids.h"
#include "resources/text.h"
#include "scanner/frame_dispatch.h"
#include "scanner/node_texts.h"
#include "sdk/class_ids.h"
#include "sdo/sd_manager.h"

namespace NScanner {
namespace {

constexpr std::uint32_t kTick_ms = 100;
constexpr wchar_t kNameKey[] = L"Name";
constexpr wchar_t kWindowPosKey[] = L"WindowPos";

// A part of the block; empty where there was no memory for it.
template <class Make>
auto MakePart(Make make) -> decltype(make()) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

bool ReadKey(NSdk::IPersistReader& reader, const wchar_t* key, std::wstring& value) {
  NCom::TaskText text;
  if (reader.ReadText(key, text.Receive()) != S_OK) return false;
  value = text.Text();
  return true;
}

}  // namespace

ZCANopenScanner::ZCANopenScanner()
    : mName(NResources::LoadText(IDS_SCAN_BLOCK_NAME)),
      mModel(MakePart([] { return NCom::Make<ZCANopenModel>(); })),
      mView(MakePart(MakeScannerWindow)),
      mManager(MakePart([] { return NCom::Make<NSdo::ZCANopenSDManager>(); }).Get()) {
  if (!mView) return;
  mView->SetCaption(mName);
  if (!mModel) return;
  mModel->AddObserver(mView.Get());
  mView->SetModel(mModel);
}

// Model and window hold each other.
ZCANopenScanner::~ZCANopenScanner() {
  if (!mView) return;
  if (mModel) mModel->RemoveObserver(mView.Get());
  mView->DetachWindow();
  mView->SetModel(nullptr);
}

HRESULT ZCANopenScanner::QueryInterface(REFIID iid, void** object) {
  if (!mView && object && iid == NSdk::IidOf<NSdk::IUIEventsEx>()) {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  return ScannerInterfaces::QueryInterface(iid, object);
}

// ---- the block in the host

HRESULT ZCANopenScanner::Attach(NSdk::IBlockSite* site) {
  return NCom::Entry([&]() -> HRESULT {
    if (!site) return E_POINTER;
    mSite = site;
    return S_OK;
  });
}

HRESULT ZCANopenScanner::Detach() {
  return NCom::Entry([&] {
    EndMeasurement();
    if (mView) mView->DetachWindow();
    mSite.Reset();
  });
}

HRESULT ZCANopenScanner::GetName(wchar_t** name) {
  return NCom::Entry([&] { return NCom::HandOut(mName, name); });
}

HRESULT ZCANopenScanner::SetName(const wchar_t* name) {
  return NCom::Entry([&]() -> HRESULT {
    if (!name) return E_POINTER;
    mName = name;
    if (mView) mView->SetCaption(mName);
    return S_OK;
  });
}

HRESULT ZCANopenScanner::GetCaption(wchar_t** caption) { return GetName(caption); }

HRESULT ZCANopenScanner::GetEvents(std::uint32_t* events) {
  NCom::ModuleScope scope;
  if (!events) return E_POINTER;
  *events = NSdk::kBlockTakesCan;
  return S_OK;
}

// ---- measurement

void ZCANopenScanner::SetDelegate(NSdk::ICANopenSDManagerDelegate* delegate) {
  const auto owner = mManager.As<NSdk::ICANopenSDManagerOwner>();
  if (owner) owner->SetDelegate(delegate);
}

HRESULT ZCANopenScanner::StartMeasurement(NSdk::IRuntime* runtime) {
  return NCom::Entry([&]() -> HRESULT {
    if (!runtime) return E_POINTER;
    EndMeasurement();
    mRuntime = runtime;
    SetDelegate(this);
    if (mModel) mModel->Clear();
    HRESULT result = runtime->CreateTimer(this, mTimer.Receive());
    if (SUCCEEDED(result)) result = mTimer ? mTimer->Start(kTick_ms, /*periodic=*/1) : E_FAIL;
    if (FAILED(result)) EndMeasurement();
    return result;
  });
}

HRESULT ZCANopenScanner::StopMeasurement() {
  return NCom::Entry([&] { EndMeasurement(); });
}

// The table stays as it is: the last states are worth reading.
void ZCANopenScanner::EndMeasurement() {
  mTimer.Reset();
  mRuntime.Reset();
  SetDelegate(nullptr);
  if (mManager) mManager->Reset();
}

HRESULT ZCANopenScanner::OnCanMessage(NSdk::ICANMessage* message) {
  return NCom::Entry([&]() -> HRESULT {
    if (!message) return E_POINTER;
    return mModel ? DispatchFrame(*mModel, mManager.Get(), *message) : S_OK;
  });
}

HRESULT ZCANopenScanner::OnTimer(NSdk::ITimer*) {
  return NCom::Entry([&] {
    if (mManager) mManager->Tick(kTick_ms);
    if (mModel) mModel->Age(kTick_ms);
  });
}

// ---- values that others read from the nodes

HRESULT ZCANopenScanner::QueryUpload(const NSdk::SdoRequest* request, std::uint32_t* answer) {
  NCom::ModuleScope scope;
  if (!request || !answer) return E_POINTER;
  *answer = request->kind == NSdk::kSdoUploadRequest && IsShownObject(request->index, request->subindex);
  return S_OK;
}

HRESULT ZCANopenScanner::OnUploadComplete(std::uint32_t cobId, std::uint32_t channel,
                                          NSdk::ICANopenDataObject* object) {
  return NCom::Entry([&] {
    const auto node = mModel ? mModel->FindNode(cobId & NCanopen::kLastNodeId, channel) : nullptr;
    if (node) node->ApplyUpload(object);
  });
}

// ---- settings

HRESULT ZCANopenScanner::GetProgId(wchar_t** progId) {
  return NCom::Entry([&] { return NCom::HandOut(NCommon::ToWide(NSdk::kProgIdCANopenScanner), progId); });
}

HRESULT ZCANopenScanner::Load(NSdk::IPersistReader* reader) {
  return NCom::Entry([&] {
    NCom::Require(reader, "reader");
    if (ReadKey(*reader, kNameKey, mName) && mView) mView->SetCaption(mName);
    if (ReadKey(*reader, kWindowPosKey, mWindowPlacement) && mView) mView->SetPlacement(mWindowPlacement);
  });
}

HRESULT ZCANopenScanner::Save(NSdk::IPersistWriter* writer) {
  return NCom::Entry([&] {
    NCom::Require(writer, "writer");
    if (mView) mWindowPlacement = mView->Placement();
    const HRESULT result = writer->WriteText(kNameKey, mName.c_str());
    return FAILED(result) ? result : writer->WriteText(kWindowPosKey, mWindowPlacement.c_str());
  });
}

// ---- the table read by its host

HRESULT ZCANopenScanner::GetModel(NSdk::IModel** model) {
  NCom::ModuleScope scope;
  if (!model) return E_POINTER;
  return mModel ? mModel->QueryInterface(NSdk::IidOf<NSdk::IModel>(), reinterpret_cast<void**>(model))
                : E_FAIL;
}

HRESULT ZCANopenScanner::GetNodes(NSdk::IArray** nodes) {
  return NCom::Entry([&]() -> HRESULT {
    if (!nodes) return E_POINTER;
    if (!mModel) return E_FAIL;
    *nodes = mModel->GetNodes().Detach();
    return S_OK;
  });
}

HRESULT ZCANopenScanner::Clear() {
  return NCom::Entry([&] {
    if (mModel) mModel->Clear();
  });
}

HRESULT ZCANopenScanner::NotifyObservers() {
  return NCom::Entry([&] { return mModel && mModel->NotifyObservers() ? S_OK : S_FALSE; });
}

HRESULT ZCANopenScanner::GetColumnText(std::uint32_t column, wchar_t** text) {
  return NCom::Entry([&]() -> HRESULT {
    if (column >= NSdk::kScannerColumns) return E_INVALIDARG;
    return NCom::HandOut(NResources::LoadText(Columns()[column].textId), text);
  });
}

HRESULT ZCANopenScanner::GetCellText(NSdk::ICANopenNode* node, std::uint32_t column, std::uint32_t numberBase,
                                     wchar_t** text) {
  return NCom::Entry([&]() -> HRESULT {
    if (column >= NSdk::kScannerColumns) return E_INVALIDARG;
    return NCom::HandOut(CellText(node, column, numberBase), text);
  });
}

HRESULT ZCANopenScanner::GetRowImage(NSdk::ICANopenNode* node, std::uint32_t* image) {
  return NCom::Entry([&]() -> HRESULT {
    if (!image) return E_POINTER;
    *image = RowImage(node);
    return S_OK;
  });
}

HRESULT ZCANopenScanner::GetToolTip(NSdk::ICANopenNode* node, wchar_t** text) {
  return NCom::Entry([&] { return NCom::HandOut(ToolTip(node), text); });
}

// ---- the window

HRESULT ZCANopenScanner::CreateBlockWindow(NSdk::IWindowSite* site) {
  NCom::ModuleScope scope;
  return mView ? mView->AttachWindow(site) : E_FAIL;
}

HRESULT ZCANopenScanner::DestroyBlockWindow() {
  NCom::ModuleScope scope;
  return mView ? mView->DetachWindow() : S_OK;
}

HRESULT ZCANopenScanner::GetBlockWindow(void** window) {
  return NCommon::AnswerBlockWindow(mView ? mView->Handle() : nullptr, window);
}

HRESULT ZCANopenScanner::GetSizes(NSdk::WindowSize* preferred, NSdk::WindowSize* minimum) {
  constexpr NSdk::WindowSize kMinimum = {160, 80};
  return mView ? NCommon::AnswerSizes(mView->PreferredSize(), kMinimum, preferred, minimum) : E_FAIL;
}

HRESULT ZCANopenScanner::Configure(void*) {
  NCom::ModuleScope scope;
  return S_FALSE;
}

}  // namespace NScanner
