#pragma once
// Simulated devices as participants of a bus.

#include <filesystem>
#include <memory>

#include "host/devices/device.h"
#include "host/devices/device_word.h"
#include "host/runtime/can_adapter.h"

namespace NDevices {

/// A device with its place on a bus and its share of the loop. Frames reach it from the loop, never from
/// inside the call that sent them, so that everybody on the bus sees a request before the answer to it.
class DeviceOnBus final : private NRuntime::CanAdapterEvents, private FrameSink {
 public:
  /// The device is off. `adapter` is closed; the loop must outlive the device. Throws as Device does.
  DeviceOnBus(NRuntime::Loop& loop, std::unique_ptr<NRuntime::CanAdapter> adapter, DeviceOptions options,
              ObjectDictionary objects);
  ~DeviceOnBus() override;
  DeviceOnBus(const DeviceOnBus&) = delete;
  DeviceOnBus& operator=(const DeviceOnBus&) = delete;

  /// Joins the bus and boots. Throws std::runtime_error in words for the user if the bus cannot be joined.
  /// Nothing happens when it is on.
  void PowerOn();
  /// Leaves the bus.
  void PowerOff();

  NRuntime::CanAdapter& Adapter() { return *mAdapter; }
  const Device& Get() const { return mDevice; }
  Misbehaviour& Faults() { return mDevice.Faults(); }

  // As the device has them, at the time of the loop.
  AbortCode SetValue(ObjectAddress address, BytesView value);
  bool RaiseError(const DeviceError& error) { return mDevice.RaiseError(error); }
  bool ClearError(std::uint16_t code) { return mDevice.ClearError(code); }

 private:
  struct Inbox;

  void OnReceived(const NSdk::CanFrame& frame, NRuntime::Time time) override;
  void OnSent(const NSdk::CanFrame&, NRuntime::Time) override {}
  void OnTrouble(const std::string&) override {}  // whoever measures on the bus tells the user
  void Send(const NSdk::CanFrame& frame) override;

  void Deliver();
  void OnAlarm();
  void SetAlarm();

  NRuntime::Loop& mLoop;
  std::unique_ptr<NRuntime::CanAdapter> mAdapter;
  Device mDevice;
  std::shared_ptr<Inbox> mInbox;  // shared with posted tasks, which find it without its owner, not gone
  std::unique_ptr<NRuntime::Alarm> mAlarm;
  Time mAlarmTime = kNever;
  bool mOn = false;
};

/// Makes the device that the word describes, still off. `libraries` is the folder of the host's libraries, of
/// which the loader of descriptions is one. Throws std::runtime_error, one line that names the word, when its
/// description cannot be loaded.
std::unique_ptr<DeviceOnBus> AttachDevice(NRuntime::Loop& loop, std::unique_ptr<NRuntime::CanAdapter> adapter,
                                          const DeviceWord& word, const std::filesystem::path& libraries);

}  // namespace NDevices
