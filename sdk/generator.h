#pragma once
// The generator block driven by a host instead of by its window: what the buttons of the window do, and what
// its lists show.

#include "sdk/com_base.h"

namespace NSdk {

enum GeneratorList : std::uint32_t {
  kSequenceList = 0,
  kCyclicList = 1,
};

/// What a generator is doing, as bits.
enum GeneratorActivity : std::uint32_t {
  kSequenceRunning = 1,
  kCyclicRunning = 2,
  kCyclicRequested = 4,  ///< asked for; begins with the next expiry of one of the block's timers
};

/// How the SDO transfer of an item ended.
enum GeneratorTransferResult : std::uint32_t {
  kTransferDone = 0,
  kTransferAborted = 1,  ///< by either side, or by the time-out
  kTransferRefused = 2,  ///< never started: its COB-IDs are equal or invalid, or the node-ID is not 1 to 127
  kTransferDropped =
      3,  ///< cut off by the next transfer, the end of cyclic transmission or of the measurement
};

/// One row of a list. The four texts are allocated for the caller, who frees each with CoTaskMemFree.
struct GeneratorItem {
  std::uint32_t typeCode = 0;
  std::uint32_t enabled = 0;
  wchar_t* typeName = nullptr;
  wchar_t* attributes = nullptr;
  wchar_t* cycle = nullptr;
  wchar_t* delay = nullptr;
};

/// Implemented by a host that follows a generator.
struct IGeneratorEvents : IUnknown {
  static constexpr IID kIid = {0xe91f4e5e, 0x5c1f, 0x467c, {0xb6, 0xc0, 0x2e, 0xc0, 0xff, 0x40, 0xf8, 0x2e}};

  /// An item was sent. `position` is its place in the whole list, from 0.
  virtual HRESULT STDMETHODCALLTYPE OnItemSent(std::uint32_t list, std::uint32_t position) = 0;
  /// An item could not be sent; what ran has ended.
  virtual HRESULT STDMETHODCALLTYPE OnItemFailed(std::uint32_t list, std::uint32_t position) = 0;
  /// The SDO transfer of an item has ended. A sequence goes on whatever the result (a
  /// GeneratorTransferResult); `bytes` were transferred, and `abortCode` is that of an aborted one, 05040000h
  /// for a time-out.
  virtual HRESULT STDMETHODCALLTYPE OnTransferEnded(std::uint32_t list, std::uint32_t position,
                                                    std::uint32_t result, std::uint32_t bytes,
                                                    std::uint32_t abortCode) = 0;
  /// Activity has changed: GeneratorActivity bits.
  virtual HRESULT STDMETHODCALLTYPE OnActivityChanged(std::uint32_t activity) = 0;
};

struct IGenerator : IUnknown {
  static constexpr IID kIid = {0xa2a418b0, 0xdf5c, 0x4ce9, {0xa5, 0xac, 0xe9, 0x47, 0xc2, 0xa2, 0x74, 0x36}};

  /// Replaces both lists by those of a sequence file and remembers its path. On failure the lists stay as
  /// they are and E_FAIL is returned; `reason`, when not null, then receives a text that says what is wrong
  /// and where. E_FAIL also while the block sends.
  virtual HRESULT STDMETHODCALLTYPE LoadSequence(const wchar_t* path, wchar_t** reason) = 0;
  /// Writes both lists to a sequence file and remembers its path. E_FAIL: there is no file; S_FALSE: written,
  /// but with characters replaced that the file cannot hold. `reason`, when not null, then receives a text
  /// that says so.
  virtual HRESULT STDMETHODCALLTYPE SaveSequence(const wchar_t* path, wchar_t** reason) = 0;
  /// The "Execute" button: starts the sequence, or stops it when it runs. E_FAIL: no measurement runs.
  virtual HRESULT STDMETHODCALLTYPE ToggleSequence() = 0;
  /// The "Start" button: starts cyclic transmission, or stops it when it runs. E_FAIL: no measurement runs.
  virtual HRESULT STDMETHODCALLTYPE ToggleCyclic() = 0;
  /// GeneratorActivity bits.
  virtual HRESULT STDMETHODCALLTYPE GetActivity(std::uint32_t* activity) = 0;
  /// `list` is a GeneratorList.
  virtual HRESULT STDMETHODCALLTYPE GetItemCount(std::uint32_t list, std::uint32_t* count) = 0;
  /// E_INVALIDARG: no such list or position.
  virtual HRESULT STDMETHODCALLTYPE GetItem(std::uint32_t list, std::uint32_t position,
                                            GeneratorItem* item) = 0;
  /// Enables or disables an item for the next start.
  virtual HRESULT STDMETHODCALLTYPE SetItemEnabled(std::uint32_t list, std::uint32_t position,
                                                   std::uint32_t enabled) = 0;
  /// The events are kept until they are replaced; null withdraws them.
  virtual HRESULT STDMETHODCALLTYPE SetEvents(IGeneratorEvents* events) = 0;
  /// Loads the sequence file that the block's settings remember, once the configuration is there; a block
  /// with a window does it by itself. S_FALSE: there is no configuration yet, or nothing is remembered.
  /// E_FAIL: it cannot be loaded, which the user was told.
  virtual HRESULT STDMETHODCALLTYPE ReloadSequence() = 0;
};

}  // namespace NSdk
