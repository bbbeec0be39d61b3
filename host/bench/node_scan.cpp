#include "host/bench/node_scan.h"

namespace NBench {

// Blocks get a frame in their order: this one hears of it when the scanner has taken it in.
class NodeScan::BlockBehind final : public NRuntime::Implements<NSdk::IRTClient, NSdk::ICANEvents> {
 public:
  explicit BlockBehind(NodeScan& scan) : mScan(scan) {}

  HRESULT STDMETHODCALLTYPE StartMeasurement(NSdk::IRuntime*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE StopMeasurement() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnCanMessage(NSdk::ICANMessage* message) override {
    std::int64_t time_ns = 0;
    message->GetTimeStamp(&time_ns);
    mScan.Check(NRuntime::Time(time_ns));
    return S_OK;
  }

 private:
  NodeScan& mScan;
};

NodeScan::NodeScan(Host& host, Listener changed)
    : mHost(host),
      mChanged(std::move(changed)),
      mScanner(host.Application(), host.Setup(), host.Names()),
      mBehind(static_cast<NSdk::IRTClient*>(NRuntime::Make<BlockBehind>(*this).Get())),
      mChangeCount(mScanner.ChangeCount()) {}

void NodeScan::Check(NRuntime::Time time) {
  const std::uint32_t count = mScanner.ChangeCount();
  if (count == mChangeCount) return;
  mChangeCount = count;
  mChanged(time);
}

std::vector<NodeChange> NodeScan::TakeChanges() {
  std::vector<ScannedNode> nodes = mScanner.Nodes();
  std::vector<NodeChange> changes = DescribeChanges(mNodes, nodes);
  mNodes = std::move(nodes);
  return changes;
}

}  // namespace NBench
