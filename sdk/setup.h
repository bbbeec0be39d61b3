#pragma once
// The host's setups and the items in them.

#include "sdk/com_base.h"

namespace NSdk {

/// A setup into which blocks are inserted.
struct ISetup : IUnknown {
  static constexpr IID kIid = {0x1544f7d7, 0x4484, 0x4928, {0x89, 0x87, 0x84, 0xc0, 0x60, 0x87, 0x04, 0xc0}};

  /// Adds a block; the setup keeps its own reference. E_FAIL: a measurement runs, or the setup takes no such
  /// block.
  virtual HRESULT STDMETHODCALLTYPE AddBlock(IUnknown* block) = 0;
  virtual HRESULT STDMETHODCALLTYPE RemoveBlock(IUnknown* block) = 0;
};

/// Offered by the context of a command.
struct ISetupAccess : IUnknown {
  static constexpr IID kIid = {0x1dd9e9fa, 0x5023, 0x4fdf, {0xa0, 0xba, 0x3b, 0x4b, 0xb1, 0x36, 0x37, 0x92}};

  virtual HRESULT STDMETHODCALLTYPE GetCurrentSetup(ISetup** setup) = 0;
};

/// Type codes of the items in a setup, as the selection reports them.
enum SetupItemType : std::uint32_t {
  kSetupItemSource = 1,
  kSetupItemBranch = 2,
  kSetupItemHotSpot = 3,  ///< a free place on a line
  kSetupItemBlock = 4,
};

/// What the user has selected in the setup view.
struct ISelectionContext : IUnknown {
  static constexpr IID kIid = {0x65f9e77f, 0xb204, 0x413b, {0x96, 0xc2, 0x75, 0x74, 0xff, 0xc1, 0x96, 0xd4}};

  virtual HRESULT STDMETHODCALLTYPE GetSelectedCount(std::uint32_t* count) = 0;
  /// Selected item at a position from 0.
  virtual HRESULT STDMETHODCALLTYPE GetSelected(std::uint32_t position, IUnknown** item) = 0;
};

/// An item of the transmit line of the measurement setup.
struct ISendLineItem : IUnknown {
  static constexpr IID kIid = {0x9de3c337, 0x6ed8, 0x4c7e, {0x8d, 0x6e, 0x9b, 0xad, 0xf8, 0x6c, 0xaa, 0xdf}};

  /// A SetupItemType.
  virtual HRESULT STDMETHODCALLTYPE GetItemType(std::uint32_t* type) = 0;
};

/// An item of the simulation setup.
struct ISimulationItem : IUnknown {
  static constexpr IID kIid = {0x046e3848, 0xd179, 0x4da8, {0x9c, 0x20, 0x84, 0x03, 0x63, 0x41, 0x74, 0x95}};

  virtual HRESULT STDMETHODCALLTYPE GetItemType(std::uint32_t* type) = 0;
};

/// Networks of the simulation setup. A host without one does not offer it.
struct ISimulationSetup : IUnknown {
  static constexpr IID kIid = {0x3448409e, 0xe526, 0x42da, {0xa8, 0x79, 0xe1, 0x0f, 0x82, 0x04, 0x33, 0x06}};

  virtual HRESULT STDMETHODCALLTYPE GetNetworkCount(std::uint32_t* count) = 0;
  /// Network at a position from 0: its name and CAN channel.
  virtual HRESULT STDMETHODCALLTYPE GetNetwork(std::uint32_t position, wchar_t** name,
                                               std::uint32_t* channel) = 0;
};

/// Where a block of a type belongs.
enum BlockCategory : std::uint32_t {
  kBlockCategorySimulation = 1,
  kBlockCategoryMeasurement = 2,
};

struct BlockType {
  std::uint32_t category;  ///< a BlockCategory
  std::uint32_t image;     ///< number of the image in the host's list
  std::uint32_t flags;     ///< bit 0: offered to the user
  const wchar_t* progId;   ///< asked for through DllGetPlugInCLSID
  const wchar_t* displayName;
};

/// Types of blocks that users can insert.
struct IBlockTypeRegistry : IUnknown {
  static constexpr IID kIid = {0x65e481ac, 0x1e67, 0x451e, {0x97, 0x29, 0x97, 0xdb, 0xe9, 0x3a, 0x7a, 0xfb}};

  virtual HRESULT STDMETHODCALLTYPE AddBlockType(const BlockType* type) = 0;
};

}  // namespace NSdk
