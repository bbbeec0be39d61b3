#pragma once
// The scanner block read by a host: its table of nodes, and what its window would show of them.
//
// A host that has no window for the block asks it for IScanner, follows IModel::GetChangeCount or observes
// the model, and reads the rows whenever something has changed.

#include "sdk/com_base.h"
#include "sdk/value_objects.h"
#include "sdk/views.h"

namespace NSdk {

/// States of a node in the scanner's table, as its last boot-up, heartbeat or guarding answer told them
/// (CiA 301, 7.2.8.3.2).
enum CANopenNodeState : std::uint32_t {
  kNodeBootUp = 0,
  kNodeStopped = 4,
  kNodeOperational = 5,
  kNodePreOperational = 127,
  kNodeStateUnknown = 255,  ///< heard, but not its state
};

/// What raises the change count of the scanner's model, as the code of IModel::Changed.
enum ScannerChange : std::uint32_t {
  kTableCleared = 1,
  kNodeAdded = 2,
  kNodeStateChanged = 3,
  kNodeProfileSet = 4,
  kNodeNameSet = 5,
  kNodeVendorIdSet = 6,
  kNodeSerialNumberSet = 7,
  kNodeAliveChanged = 8,
  kNodeErrorChanged = 9,
  kNodeMasterSet = 10,
};

/// A node that was heard on a channel. One that is no longer in the table keeps its last values.
struct ICANopenNode : IUnknown {
  static constexpr IID kIid = {0x5a82b5e5, 0x6cf3, 0x4c0d, {0x92, 0xa8, 0xee, 0x09, 0x05, 0x0c, 0xc5, 0x1a}};

  virtual HRESULT STDMETHODCALLTYPE GetNodeId(std::uint32_t* nodeId) = 0;
  /// CAN channel of the host, from 1.
  virtual HRESULT STDMETHODCALLTYPE GetChannel(std::uint32_t* channel) = 0;
  /// A CANopenNodeState, or another value from 0 to 127 that the node sent.
  virtual HRESULT STDMETHODCALLTYPE GetState(std::uint32_t* state) = 0;
  /// 1, or 0 after ten seconds without a sign of life.
  virtual HRESULT STDMETHODCALLTYPE IsAlive(std::uint32_t* alive) = 0;
  /// Error register of the last EMCY message (CiA 301, object 1001h).
  virtual HRESULT STDMETHODCALLTYPE GetErrorRegister(std::uint32_t* errorRegister) = 0;
  /// "x" when the node announced itself as the NMT master, else " ".
  virtual HRESULT STDMETHODCALLTYPE GetMaster(wchar_t** text) = 0;
  /// Priority as NMT master: a number, "? " and a number when it is no longer certain, or "?".
  virtual HRESULT STDMETHODCALLTYPE GetPriority(wchar_t** text) = 0;
  /// Text of 1000h/0 (device profile), 1008h/0 (device name), 1018h/1 (vendor-ID) or 1018h/4 (serial number);
  /// "--" when it was not heard, and for any other object.
  virtual HRESULT STDMETHODCALLTYPE GetObjectText(std::uint16_t index, std::uint8_t subindex,
                                                  wchar_t** text) = 0;
  /// Number of 1000h/0 (its low 16 bits), 1018h/1 or 1018h/4. S_FALSE, nothing written: it was not heard.
  /// E_INVALIDARG: another object.
  virtual HRESULT STDMETHODCALLTYPE GetObjectValue(std::uint16_t index, std::uint8_t subindex,
                                                   std::uint32_t* value) = 0;
};

/// Columns of the scanner's window, from the left.
enum ScannerColumn : std::uint32_t {
  kColumnNodeId,
  kColumnState,
  kColumnChannel,
  kColumnName,
  kColumnMaster,
  kColumnPriority,
  kScannerColumns,  ///< their number
};

struct IScanner : IUnknown {
  static constexpr IID kIid = {0x49b4236c, 0xb9f0, 0x4d09, {0x8a, 0x07, 0xef, 0xb8, 0xd3, 0xbf, 0x35, 0x0f}};

  /// The table as a model to observe. E_FAIL: the block could not make one.
  virtual HRESULT STDMETHODCALLTYPE GetModel(IModel** model) = 0;
  /// The nodes heard since the start of the measurement, ICANopenNode, ordered by channel and node-ID.
  virtual HRESULT STDMETHODCALLTYPE GetNodes(IArray** nodes) = 0;
  /// Empties the table.
  virtual HRESULT STDMETHODCALLTYPE Clear() = 0;
  /// Tells the model's observers if something has changed since the last call; the block's window, where
  /// there is one, calls it every 500 ms. S_FALSE: nothing has.
  virtual HRESULT STDMETHODCALLTYPE NotifyObservers() = 0;
  /// Heading of a ScannerColumn, in the module's language. E_INVALIDARG: no such column.
  virtual HRESULT STDMETHODCALLTYPE GetColumnText(std::uint32_t column, wchar_t** text) = 0;
  /// Text of a node's cell. `numberBase` is 10 or 16. E_INVALIDARG: no such column.
  virtual HRESULT STDMETHODCALLTYPE GetCellText(ICANopenNode* node, std::uint32_t column,
                                                std::uint32_t numberBase, wchar_t** text) = 0;
  /// Image of a node's row: 0 silent or unknown, 1 booting or stopped, 2 pre-operational, 3 operational; 4
  /// more when the node has reported an error.
  virtual HRESULT STDMETHODCALLTYPE GetRowImage(ICANopenNode* node, std::uint32_t* image) = 0;
  /// The lines that the window shows about a node: identity, then the bits of its error register in words.
  virtual HRESULT STDMETHODCALLTYPE GetToolTip(ICANopenNode* node, wchar_t** text) = 0;
};

}  // namespace NSdk
