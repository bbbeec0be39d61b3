#pragma once
// Blocks: what a plug-in inserts into the host's setups. The host creates a block through the module's class
// table and then asks it by QueryInterface what it can do.
//
// Life of a block:
//   1. created (IClassFactory::CreateInstance)
//   2. IPlugInBlock::Attach: the block learns its place in the host
//   3. IPersistentObject::Load: its settings, when the configuration holds some
//   4. any number of measurements: IRTClient::StartMeasurement, then timer and CAN events, then
//   StopMeasurement
//   5. IPersistentObject::Save whenever the configuration is saved
//   6. IPlugInBlock::Detach, then the host releases it

#include "sdk/can_message.h"
#include "sdk/com_base.h"
#include "sdk/runtime.h"

namespace NSdk {

struct IHostApplication;

/// A block's place in the host, implemented by the host.
struct IBlockSite : IUnknown {
  static constexpr IID kIid = {0x38af7cdf, 0x6097, 0x47fd, {0xa7, 0x3b, 0xcb, 0x43, 0x14, 0x00, 0x0b, 0x08}};

  virtual HRESULT STDMETHODCALLTYPE GetApplication(IHostApplication** application) = 0;
  /// The block's name or caption has changed: the host asks for them anew.
  virtual HRESULT STDMETHODCALLTYPE BlockChanged() = 0;
};

/// Every block.
struct IPlugInBlock : IUnknown {
  static constexpr IID kIid = {0x8addc4b4, 0xedf0, 0x45eb, {0xa3, 0xc7, 0x79, 0xf9, 0xe8, 0xd6, 0xc1, 0x35}};

  /// Connects the block with the host. A second call replaces the site. E_POINTER: null site.
  virtual HRESULT STDMETHODCALLTYPE Attach(IBlockSite* site) = 0;
  /// Disconnects it: the block releases whatever it holds of the host.
  virtual HRESULT STDMETHODCALLTYPE Detach() = 0;
  /// Name that the user gave or sees for this block.
  virtual HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetName(const wchar_t* name) = 0;
  /// Text for the title of the block's window.
  virtual HRESULT STDMETHODCALLTYPE GetCaption(wchar_t** caption) = 0;
};

/// Events that a block takes part in, as bits.
enum BlockEvents : std::uint32_t {
  kBlockTakesCan = 1,  ///< ICANEvents::OnCanMessage
};

/// A block of the measurement setup that ends a line: data goes in, nothing comes out.
struct IMSFinalNode : IUnknown {
  static constexpr IID kIid = {0xee66a7a1, 0xf171, 0x4e43, {0xb9, 0x3b, 0x29, 0xe7, 0xb9, 0x24, 0xca, 0x95}};

  /// BlockEvents that the host is to deliver.
  virtual HRESULT STDMETHODCALLTYPE GetEvents(std::uint32_t* events) = 0;
};

/// A block that data passes through: whatever it is given goes on to the blocks behind it.
struct IMSTransferNode : IUnknown {
  static constexpr IID kIid = {0xe18492fe, 0xd607, 0x44a8, {0x8d, 0x1a, 0xb1, 0x47, 0x55, 0x3f, 0x0c, 0x7c}};

  /// S_OK when the event may go on to the next block, S_FALSE when the block swallows it.
  virtual HRESULT STDMETHODCALLTYPE Passes(std::uint32_t event) = 0;
};

/// Implemented by a block that takes part in measurements.
struct IRTClient : IUnknown {
  static constexpr IID kIid = {0x34ea9a30, 0x25d1, 0x43c6, {0xb3, 0x59, 0x47, 0x2f, 0x86, 0xc8, 0x58, 0xdf}};

  /// A measurement starts. The block keeps the run time until StopMeasurement.
  virtual HRESULT STDMETHODCALLTYPE StartMeasurement(IRuntime* runtime) = 0;
  /// The measurement has stopped: the block releases its timers, outputs and the run time.
  virtual HRESULT STDMETHODCALLTYPE StopMeasurement() = 0;
};

}  // namespace NSdk
