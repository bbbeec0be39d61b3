#include "plugin/database_nodes.h"

#include "com/entry.h"
#include "com/implements.h"
#include "com/task_text.h"
#include "common/array.h"
#include "common/text.h"

namespace NPlugin {
namespace {

template <class Value, class Result>
HRESULT Answer(Value value, Result* result) {
  NCom::ModuleScope scope;
  if (!result) return E_POINTER;
  *result = static_cast<Result>(value);
  return S_OK;
}

class ZDatabaseNode final : public NCom::Implements<NSdk::IDatabaseNode> {
 public:
  explicit ZDatabaseNode(NSdo::DatabaseNode node) : mNode(std::move(node)) {}

  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override {
    return NCom::Entry([&] { return NCom::HandOut(mNode.name, name); });
  }
  HRESULT STDMETHODCALLTYPE GetNodeId(std::uint32_t* nodeId) override { return Answer(mNode.nodeId, nodeId); }
  HRESULT STDMETHODCALLTYPE GetDescription(wchar_t** path) override {
    return NCom::Entry([&]() -> HRESULT {
      if (!path) return E_POINTER;
      if (mNode.description.empty()) return S_FALSE;
      return NCom::HandOut(NCommon::PathToWide(mNode.description), path);
    });
  }

  HRESULT STDMETHODCALLTYPE GetObjectCount(std::uint32_t* count) override {
    return Answer(mNode.objects.size(), count);
  }
  HRESULT STDMETHODCALLTYPE GetObjectAt(std::uint32_t position, NSdk::DatabaseObject* object) override {
    return NCom::Entry([&]() -> HRESULT {
      if (!object) return E_POINTER;
      if (position >= mNode.objects.size()) return E_INVALIDARG;
      const NSdo::NodeObject& found = mNode.objects[position];
      NCom::TaskText label, value;
      NCom::HandOut(found.label, label.Receive());
      NCom::HandOut(found.value, value.Receive());
      *object = {found.index,    found.subindex, found.size,    found.variableLength,
                 found.writable, label.Detach(), value.Detach()};
      return S_OK;
    });
  }

  HRESULT STDMETHODCALLTYPE GetTpdoCount(std::uint32_t* count) override {
    return Answer(mNode.tpdos.size(), count);
  }
  HRESULT STDMETHODCALLTYPE GetTpdoAt(std::uint32_t position, std::uint32_t* cobId,
                                      std::uint32_t* number) override {
    NCom::ModuleScope scope;
    if (position >= mNode.tpdos.size()) return E_INVALIDARG;
    if (cobId) *cobId = mNode.tpdos[position].cobId;
    if (number) *number = mNode.tpdos[position].number;
    return S_OK;
  }

 private:
  const NSdo::DatabaseNode mNode;
};

}  // namespace

std::uint32_t ProtocolsOf(const NChannels::Channel& channel) {
  std::uint32_t protocols = 0;
  if (channel.j1939) protocols |= NSdk::kProtocolJ1939;
  if (channel.canopen) protocols |= NSdk::kProtocolCANopen;
  if (channel.deviceNet) protocols |= NSdk::kProtocolDeviceNet;
  if (channel.aerospace) protocols |= NSdk::kProtocolAerospace;
  if (channel.nmea) protocols |= NSdk::kProtocolNmea;
  return protocols;
}

NCom::ComPtr<NSdk::IArray> MakeNodeArray(std::vector<NSdo::DatabaseNode> nodes) {
  std::vector<NCom::ComPtr<IUnknown>> objects;
  for (NSdo::DatabaseNode& node : nodes) {
    objects.emplace_back(NCom::Make<ZDatabaseNode>(std::move(node))->Identity());
  }
  return NCommon::MakeArray(std::move(objects));
}

}  // namespace NPlugin
