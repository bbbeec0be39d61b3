#pragma once

#include "com/com_ptr.h"
#include "com/implements.h"
#include "scanner/model_observers.h"
#include "scanner/node.h"
#include "sdk/value_objects.h"
#include "sdk/views.h"

namespace NScanner {

/// The table of nodes, one row per channel and node-ID. Changes are counted and remembered; observers hear of
/// them when NotifyObservers is called.
class ZCANopenModel final : public NCom::Implements<NSdk::IModel> {
 public:
  /// Throws std::bad_alloc.
  ZCANopenModel();

  // IModel
  HRESULT STDMETHODCALLTYPE GetChangeCount(std::uint32_t* count) override;
  HRESULT STDMETHODCALLTYPE Changed(std::uint32_t code, IUnknown* object) override;
  HRESULT STDMETHODCALLTYPE BeginUpdate() override;
  HRESULT STDMETHODCALLTYPE EndUpdate(std::uint32_t code, IUnknown* object) override;
  HRESULT STDMETHODCALLTYPE AddObserver(NSdk::IModelObserver* observer) override;
  HRESULT STDMETHODCALLTYPE RemoveObserver(NSdk::IModelObserver* observer) override;

  /// Empty: it is not in the table.
  NCom::ComPtr<ZCANopenNode> FindNode(std::uint32_t nodeId, std::uint32_t channel) const;
  /// A new row with nothing known but its place. E_FAIL: the table is full.
  HRESULT AddNode(std::uint32_t nodeId, std::uint32_t channel, NCom::ComPtr<ZCANopenNode>& node);
  void Clear();
  /// All rows, by channel and node-ID as long as channels count from 1 to 32.
  NCom::ComPtr<NSdk::IArray> GetNodes() const;
  /// An NMT command was seen. Who sent it is not known: no node counts as the master any more, and priorities
  /// become doubtful.
  void MarkMasterUnknown();
  void Age(std::uint32_t elapsed_ms);
  /// False: nothing has changed since the last call.
  bool NotifyObservers();

 private:
  template <class Action>
  void ForEachNode(Action action) const;

  NCom::ComPtr<NSdk::IHashMap> mNodes;
  std::uint32_t mChangeCount = 0;
  std::uint32_t mUpdateMark = 0;  // change count at the start of an update bracket; 0: there is none
  bool mPending = false;
  NCom::ComPtr<IUnknown> mPendingNode;  // a hint for observers
  ZModelObservers mObservers;
};

}  // namespace NScanner
