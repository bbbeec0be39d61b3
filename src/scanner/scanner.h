#pragma once
// The scanner block as the host knows it.

#include <string>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "scanner/model.h"
#include "scanner/scanner_window.h"
#include "sdk/blocks.h"
#include "sdk/persistence.h"
#include "sdk/scanner.h"
#include "sdk/sdo_observation.h"

namespace NScanner {

using ScannerInterfaces =
    NCom::Implements<NSdk::IPlugInBlock, NSdk::IMSFinalNode, NSdk::IRTClient, NSdk::ICANEvents,
                     NSdk::ITimerSink, NSdk::IPersistentObject, NSdk::ICANopenSDManagerDelegate,
                     NSdk::IScanner, NSdk::IUIEventsEx>;

/// ProgID "HarlowPlugIn.CANopenScanner": lists the CANopen nodes that it hears on all channels of the
/// measurement. It sends nothing. Without a part that could not be made, the block works as far as it goes.
class ZCANopenScanner final : public ScannerInterfaces {
 public:
  ZCANopenScanner();
  ~ZCANopenScanner() override;

  /// Without a window the block has no IUIEventsEx.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

  // IPlugInBlock
  HRESULT STDMETHODCALLTYPE Attach(NSdk::IBlockSite* site) override;
  HRESULT STDMETHODCALLTYPE Detach() override;
  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override;
  HRESULT STDMETHODCALLTYPE SetName(const wchar_t* name) override;
  HRESULT STDMETHODCALLTYPE GetCaption(wchar_t** caption) override;

  // IMSFinalNode
  HRESULT STDMETHODCALLTYPE GetEvents(std::uint32_t* events) override;

  // IRTClient, ICANEvents, ITimerSink
  HRESULT STDMETHODCALLTYPE StartMeasurement(NSdk::IRuntime* runtime) override;
  HRESULT STDMETHODCALLTYPE StopMeasurement() override;
  HRESULT STDMETHODCALLTYPE OnCanMessage(NSdk::ICANMessage* message) override;
  HRESULT STDMETHODCALLTYPE OnTimer(NSdk::ITimer* timer) override;

  // IPersistentObject
  HRESULT STDMETHODCALLTYPE GetProgId(wchar_t** progId) override;
  HRESULT STDMETHODCALLTYPE Load(NSdk::IPersistReader* reader) override;
  HRESULT STDMETHODCALLTYPE Save(NSdk::IPersistWriter* writer) override;

  // ICANopenSDManagerDelegate
  HRESULT STDMETHODCALLTYPE QueryUpload(const NSdk::SdoRequest* request, std::uint32_t* answer) override;
  HRESULT STDMETHODCALLTYPE OnUploadComplete(std::uint32_t cobId, std::uint32_t channel,
                                             NSdk::ICANopenDataObject* object) override;

  // IScanner
  HRESULT STDMETHODCALLTYPE GetModel(NSdk::IModel** model) override;
  HRESULT STDMETHODCALLTYPE GetNodes(NSdk::IArray** nodes) override;
  HRESULT STDMETHODCALLTYPE Clear() override;
  HRESULT STDMETHODCALLTYPE NotifyObservers() override;
  HRESULT STDMETHODCALLTYPE GetColumnText(std::uint32_t column, wchar_t** text) override;
  HRESULT STDMETHODCALLTYPE GetCellText(NSdk::ICANopenNode* node, std::uint32_t column,
                                        std::uint32_t numberBase, wchar_t** text) override;
  HRESULT STDMETHODCALLTYPE GetRowImage(NSdk::ICANopenNode* node, std::uint32_t* image) override;
  HRESULT STDMETHODCALLTYPE GetToolTip(NSdk::ICANopenNode* node, wchar_t** text) override;

  // IUIEventsEx
  HRESULT STDMETHODCALLTYPE CreateBlockWindow(NSdk::IWindowSite* site) override;
  HRESULT STDMETHODCALLTYPE DestroyBlockWindow() override;
  HRESULT STDMETHODCALLTYPE GetBlockWindow(void** window) override;
  HRESULT STDMETHODCALLTYPE GetSizes(NSdk::WindowSize* preferred, NSdk::WindowSize* minimum) override;
  /// S_FALSE: there is nothing to set.
  HRESULT STDMETHODCALLTYPE Configure(void* parentWindow) override;

 private:
  void SetDelegate(NSdk::ICANopenSDManagerDelegate* delegate);
  void EndMeasurement();

  NCom::ComPtr<NSdk::IBlockSite> mSite;
  NCom::ComPtr<NSdk::IRuntime> mRuntime;  // while a measurement runs
  NCom::ComPtr<NSdk::ITimer> mTimer;      // likewise
  std::wstring mName;
  std::wstring mWindowPlacement;  // as the configuration keeps it; where there is a window, it knows better
  NCom::ComPtr<ZCANopenModel> mModel;
  NCom::ComPtr<ScannerWindow> mView;
  NCom::ComPtr<NSdk::ICANopenSDManager> mManager;
};

}  // namespace NScanner
