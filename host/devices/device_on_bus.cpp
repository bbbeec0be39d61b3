#include "host/devices/device_on_bus.h"

#include <stdexcept>
#include <vector>

#include "host/devices/described_objects.h"
#include "host/devices/profile.h"

namespace NDevices {
namespace {

ObjectDictionary ObjectsOf(const DeviceWord& word, const std::filesystem::path& libraries) {
  if (word.description.empty()) return IoDeviceObjects(word.nodeId);
  try {
    return LoadDescribedObjects(libraries, word.description, word.nodeId);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error("device \"" + std::to_string(word.nodeId) + ":" + word.description +
                             "\": " + error.what());
  }
}

}  // namespace

// Frames that came since the loop was here last. Two lists take turns, so that their memory stays.
struct DeviceOnBus::Inbox {
  DeviceOnBus* owner;
  std::vector<NSdk::CanFrame> arrived;
  std::vector<NSdk::CanFrame> delivering;
};

DeviceOnBus::DeviceOnBus(NRuntime::Loop& loop, std::unique_ptr<NRuntime::CanAdapter> adapter,
                         DeviceOptions options, ObjectDictionary objects)
    : mLoop(loop),
      mAdapter(std::move(adapter)),
      mDevice(options, std::move(objects), *this),
      mInbox(std::make_shared<Inbox>(Inbox{this, {}, {}})),
      mAlarm(loop.MakeAlarm([this] { OnAlarm(); })) {}

DeviceOnBus::~DeviceOnBus() {
  PowerOff();
  mInbox->owner = nullptr;
}

void DeviceOnBus::PowerOn() {
  if (mOn) return;
  mAdapter->Open(*this);
  mOn = true;
  mDevice.PowerOn(mLoop.Now());
  SetAlarm();
}

void DeviceOnBus::PowerOff() {
  if (!mOn) return;
  mOn = false;
  mDevice.PowerOff();
  mAdapter->Close();
  mInbox->arrived.clear();
  mAlarm->Cancel();
  mAlarmTime = kNever;
}

void DeviceOnBus::Send(const NSdk::CanFrame& frame) { mAdapter->Send(frame); }

void DeviceOnBus::OnReceived(const NSdk::CanFrame& frame, NRuntime::Time) {
  mInbox->arrived.push_back(frame);
  if (mInbox->arrived.size() > 1) return;  // the loop knows
  mLoop.Post([inbox = mInbox] {
    if (inbox->owner) inbox->owner->Deliver();
  });
}

void DeviceOnBus::Deliver() {
  if (!mOn) return;
  std::swap(mInbox->arrived, mInbox->delivering);
  for (const NSdk::CanFrame& frame : mInbox->delivering) mDevice.OnFrame(frame, mLoop.Now());
  mInbox->delivering.clear();
  SetAlarm();
}

void DeviceOnBus::OnAlarm() {
  mAlarmTime = kNever;
  mDevice.OnDeadline(mLoop.Now());
  SetAlarm();
}

// A deadline that moves away, as those of transfers do with every frame, leaves the alarm alone: it finds
// nothing to do then and is set anew.
void DeviceOnBus::SetAlarm() {
  const Time deadline = mDevice.NextDeadline();
  if (deadline >= mAlarmTime) return;
  mAlarmTime = deadline;
  mAlarm->SetFor(deadline);
}

AbortCode DeviceOnBus::SetValue(ObjectAddress address, BytesView value) {
  const AbortCode code = mDevice.SetValue(address, value, mLoop.Now());
  SetAlarm();
  return code;
}

std::unique_ptr<DeviceOnBus> AttachDevice(NRuntime::Loop& loop, std::unique_ptr<NRuntime::CanAdapter> adapter,
                                          const DeviceWord& word, const std::filesystem::path& libraries) {
  DeviceOptions options;
  options.nodeId = word.nodeId;
  options.misbehaviour = word.faults;
  return std::make_unique<DeviceOnBus>(loop, std::move(adapter), options, ObjectsOf(word, libraries));
}

}  // namespace NDevices
