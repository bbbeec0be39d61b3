#pragma once
// The plug-in's commands, class by class.

#include "plugin/action.h"
#include "plugin/nmt_menu.h"
#include "resources/resource_ids.h"

namespace NPlugin {

class ZPlugIn;

class ZActionInsertScanner final : public ZAction<ZPlugIn, IDS_SCAN_INSERT, IDS_SCAN_INSERT_TIP, 0, 0, 0, 0> {
 public:
  static constexpr wchar_t kName[] = L"Insert.CANopenScanner";
  explicit ZActionInsertScanner(ZPlugIn& owner) : ZAction(owner, kName) {}
  HRESULT STDMETHODCALLTYPE Execute(IUnknown* context) override;
  HRESULT STDMETHODCALLTYPE GetState(std::uint32_t* state) override;
};

class ZActionInsertSeqGenerator final
    : public ZAction<ZPlugIn, IDS_IG_INSERT, IDS_IG_INSERT_TIP, 0, 0, 0, 0> {
 public:
  static constexpr wchar_t kName[] = L"Insert.CANopenIG";
  explicit ZActionInsertSeqGenerator(ZPlugIn& owner) : ZAction(owner, kName) {}
  HRESULT STDMETHODCALLTYPE Execute(IUnknown* context) override;
  HRESULT STDMETHODCALLTYPE GetState(std::uint32_t* state) override;
};

class ZActionExecBrk final
    : public ZAction<ZPlugIn, IDS_TOOL_BRACKWELL, IDS_TOOL_BRACKWELL, IDB_TOOL_BRACKWELL,
                     IDI_TOOL_BRACKWELL_SMALL, IDI_TOOL_BRACKWELL_LARGE, 0> {
 public:
  explicit ZActionExecBrk(ZPlugIn& owner) : ZAction(owner, L"Tool.Brackwell") {}
  HRESULT STDMETHODCALLTYPE Execute(IUnknown* context) override;
  HRESULT STDMETHODCALLTYPE GetState(std::uint32_t* state) override;
};

class ZActionExecQuillon final : public ZAction<ZPlugIn, IDS_TOOL_QUILLON, IDS_TOOL_QUILLON, IDB_TOOL_QUILLON,
                                                IDI_TOOL_QUILLON_SMALL, IDI_TOOL_QUILLON_LARGE, 0> {
 public:
  explicit ZActionExecQuillon(ZPlugIn& owner) : ZAction(owner, L"Tool.Quillon") {}
  HRESULT STDMETHODCALLTYPE Execute(IUnknown* context) override;
  HRESULT STDMETHODCALLTYPE GetState(std::uint32_t* state) override;
};

/// Carries the drop-down menu with the commands of all networks; does nothing itself.
class ZActionCANopenNmtManagement final
    : public ZAction<ZPlugIn, IDS_NMT_MANAGEMENT, IDS_NMT_MANAGEMENT, 0, 0, 0, 1> {
 public:
  explicit ZActionCANopenNmtManagement(ZPlugIn& owner) : ZAction(owner, L"CANopen.NetworkManagement") {}
  HRESULT STDMETHODCALLTYPE Execute(IUnknown*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetMenu(std::uint32_t firstId, std::uint32_t lastId, void** menu) override;
  HRESULT STDMETHODCALLTYPE ExecuteItem(std::uint32_t id, IUnknown* context) override;

 private:
  bool HasDropDown() const override { return true; }

  NmtMenu mMenu;
};

/// A command of the menus that goes to one node, once it has one.
class NodeSlot {
 public:
  virtual ~NodeSlot() = default;
  /// Gives it a node of a network, numbered from 1, and its caption; kNoNetwork takes the node away.
  virtual void Assign(std::uint8_t network, std::uint8_t nodeId, std::wstring caption) = 0;
};

/// Sends NMT commands of its kind to a target in a network; that for all nodes has a drop-down menu with the
/// choice of others. For the commands of single nodes network and target are none until a node is assigned.
template <std::uint32_t Caption, std::uint32_t ToolTip, std::uint32_t Bitmap, std::uint32_t SmallIcon,
          std::uint32_t LargeIcon, NmtKind Kind>
class ZActionCANopenSendMsg final : public ZAction<ZPlugIn, Caption, ToolTip, Bitmap, SmallIcon, LargeIcon,
                                                   static_cast<std::uint32_t>(Kind)>,
                                    public NodeSlot {
 public:
  ZActionCANopenSendMsg(ZPlugIn& owner, std::wstring name, std::uint32_t state, std::uint8_t network,
                        std::uint8_t target)
      : ZActionCANopenSendMsg::ZAction(owner, std::move(name), state), mNetwork(network), mTarget(target) {}

  HRESULT STDMETHODCALLTYPE Execute(IUnknown*) override {
    return NCom::Entry([&] { this->mOwner.SendNmt(Kind, mNetwork, mTarget); });
  }

  HRESULT STDMETHODCALLTYPE GetMenu(std::uint32_t firstId, std::uint32_t lastId, void** menu) override {
    return NCom::Entry([&] { return mMenu.MakeForNetwork(Kind, mNetwork, firstId, lastId, menu); });
  }

  HRESULT STDMETHODCALLTYPE ExecuteItem(std::uint32_t id, IUnknown*) override {
    return NCom::Entry([&]() -> HRESULT {
      const auto item = mMenu.Find(id);
      if (!item) return E_INVALIDARG;
      this->mOwner.SendNmt(item->kind, item->network, item->target);
      return S_OK;
    });
  }

  HRESULT STDMETHODCALLTYPE GetCaption(wchar_t** caption) override {
    if (mCaption.empty()) return ZActionCANopenSendMsg::ZAction::GetCaption(caption);
    return NCom::Entry([&] { return NCom::HandOut(mCaption, caption); });
  }

  void Assign(std::uint8_t network, std::uint8_t nodeId, std::wstring caption) override {
    mNetwork = network;
    mTarget = nodeId;
    mCaption = std::move(caption);
    this->SetState(network == kNoNetwork ? NSdk::kCommandHidden : NSdk::kCommandShown);
  }

 private:
  bool HasDropDown() const override { return mNetwork != kNoNetwork && mTarget == kTargetAllNodes; }

  std::uint8_t mNetwork;  // from 1
  std::uint8_t mTarget;
  std::wstring mCaption;  // of the node; empty: that of the class
  NmtMenu mMenu;
};

// The kinds have the same images wherever they appear. Their tool tips are three texts of the same words.
template <std::uint32_t Caption, std::uint32_t ToolTip>
using OperationalAction =
    ZActionCANopenSendMsg<Caption, ToolTip, IDB_NMT_OPERATIONAL, IDI_NMT_OPERATIONAL_SMALL,
                          IDI_NMT_OPERATIONAL_LARGE, NmtKind::Operational>;
template <std::uint32_t Caption, std::uint32_t ToolTip>
using PreoperationalAction =
    ZActionCANopenSendMsg<Caption, ToolTip, IDB_NMT_PREOPERATIONAL, IDI_NMT_PREOPERATIONAL_SMALL,
                          IDI_NMT_PREOPERATIONAL_LARGE, NmtKind::Preoperational>;
template <std::uint32_t Caption, std::uint32_t ToolTip>
using StopAction = ZActionCANopenSendMsg<Caption, ToolTip, IDB_NMT_STOP, IDI_NMT_STOP_SMALL,
                                         IDI_NMT_STOP_LARGE, NmtKind::Stop>;
template <std::uint32_t Caption, std::uint32_t ToolTip>
using ResetAction = ZActionCANopenSendMsg<Caption, ToolTip, IDB_NMT_RESET, IDI_NMT_RESET_SMALL,
                                          IDI_NMT_RESET_LARGE, NmtKind::Reset>;

using ZActionCANopenSendMsgOperational = OperationalAction<IDS_NMT_OPERATIONAL, IDS_NMT_NEEDS_IG>;
using ZActionCANopenSendMsgPreoperational = PreoperationalAction<IDS_NMT_PREOPERATIONAL, IDS_NMT_NEEDS_IG>;
using ZActionCANopenSendMsgStop = StopAction<IDS_NMT_STOP, IDS_NMT_NEEDS_IG>;
using ZActionCANopenSendMsgReset = ResetAction<IDS_NMT_RESET, IDS_NMT_NEEDS_IG>;

using ZActionCANopenSendMsgOperationalAll = OperationalAction<IDS_NMT_ALL_NODES, IDS_NMT_ALL_NODES_TIP>;
using ZActionCANopenSendMsgPreoperationalAll = PreoperationalAction<IDS_NMT_ALL_NODES, IDS_NMT_ALL_NODES_TIP>;
using ZActionCANopenSendMsgStopAll = StopAction<IDS_NMT_ALL_NODES, IDS_NMT_NEEDS_IG>;
using ZActionCANopenSendMsgResetAll = ResetAction<IDS_NMT_ALL_NODES, IDS_NMT_NEEDS_IG>;

using ZActionCANopenSendMsgOperationalNodes = OperationalAction<IDS_NMT_NODES, IDS_NMT_NODES_TIP>;
using ZActionCANopenSendMsgPreoperationalNodes = PreoperationalAction<IDS_NMT_NODES, IDS_NMT_NODES_TIP>;
using ZActionCANopenSendMsgStopNodes = StopAction<IDS_NMT_NODES, IDS_NMT_NEEDS_IG>;
using ZActionCANopenSendMsgResetNodes = ResetAction<IDS_NMT_NODES, IDS_NMT_NEEDS_IG>;

}  // namespace NPlugin
