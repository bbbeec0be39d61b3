#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "com/implements.h"
#include "sdk/scanner.h"
#include "sdk/sdo_observation.h"

namespace NScanner {

class ZCANopenModel;

// Objects that the table shows of a node (CiA 301, 7.5.2).
inline constexpr std::uint16_t kDeviceType = 0x1000;
inline constexpr std::uint16_t kDeviceName = 0x1008;
inline constexpr std::uint16_t kIdentity = 0x1018;
inline constexpr std::uint8_t kVendorId = 1;
inline constexpr std::uint8_t kSerialNumber = 4;

/// Whether a node keeps the value of this object.
bool IsShownObject(std::uint16_t index, std::uint8_t subindex);

/// A node that was heard on a channel. Every change is reported to the model; a host may keep a node for
/// longer than the model lives, but can only read it.
class ZCANopenNode final : public NCom::Implements<NSdk::ICANopenNode> {
 public:
  ZCANopenNode(ZCANopenModel& model, std::uint32_t nodeId, std::uint32_t channel)
      : mModel(model), mNodeId(nodeId), mChannel(channel) {}

  /// Takes a state as a frame told it, or kNodeStateUnknown. A node that boots has no error.
  void SetState(std::uint8_t state);
  void SetMasterPriority(std::string_view master, std::string_view priority);
  /// Of an EMCY message; its error code is not kept.
  void SetErrorRegister(std::uint16_t errorCode, std::uint8_t errorRegister);
  /// The node gave a sign of life.
  void Touch();
  void Age(std::uint32_t elapsed_ms);
  /// Takes the value of an object that was read from the node. Raises E:"dataObject" for null.
  void ApplyUpload(NSdk::ICANopenDataObject* dataObject);
  std::string GetObjectText(std::uint16_t index, std::uint8_t subindex) const;
  const std::string& GetPriority() const { return mPriority; }

  // ICANopenNode
  HRESULT STDMETHODCALLTYPE GetNodeId(std::uint32_t* nodeId) override;
  HRESULT STDMETHODCALLTYPE GetChannel(std::uint32_t* channel) override;
  HRESULT STDMETHODCALLTYPE GetState(std::uint32_t* state) override;
  HRESULT STDMETHODCALLTYPE IsAlive(std::uint32_t* alive) override;
  HRESULT STDMETHODCALLTYPE GetErrorRegister(std::uint32_t* errorRegister) override;
  HRESULT STDMETHODCALLTYPE GetMaster(wchar_t** text) override;
  HRESULT STDMETHODCALLTYPE GetPriority(wchar_t** text) override;
  HRESULT STDMETHODCALLTYPE GetObjectText(std::uint16_t index, std::uint8_t subindex,
                                          wchar_t** text) override;
  HRESULT STDMETHODCALLTYPE GetObjectValue(std::uint16_t index, std::uint8_t subindex,
                                           std::uint32_t* value) override;

 private:
  static constexpr std::uint32_t kUnknown = 0xFFFFFFFF;
  static constexpr std::uint32_t kPatience_ms = 10000;

  void Report(NSdk::ScannerChange change);
  bool TakeNumber(NSdk::ICANopenDataObject& object, std::uint32_t mask, std::uint32_t& number);
  const std::uint32_t* FindNumber(std::uint16_t index, std::uint8_t subindex) const;

  ZCANopenModel& mModel;
  std::uint32_t mNodeId;
  std::uint32_t mChannel;
  std::uint32_t mState = kUnknown;
  std::string mName;  // empty: unknown
  std::uint32_t mTimeLeft_ms = kPatience_ms;
  std::uint32_t mAlive = 1;
  std::string mMaster = " ";
  std::string mPriority = "?";
  std::uint8_t mErrorRegister = 0;
  std::uint32_t mProfile = kUnknown;
  std::uint32_t mVendorId = kUnknown;
  std::uint32_t mSerialNumber = kUnknown;
};

}  // namespace NScanner
