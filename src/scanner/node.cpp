#include "scanner/node.h"

#include "canopen/vocabulary.h"
#include "com/entry.h"
#include "com/task_text.h"
#include "common/text.h"
#include "scanner/model.h"

namespace NScanner {
namespace {

constexpr char kUnknownText[] = "--";

HRESULT Answer(std::uint32_t value, std::uint32_t* result) {
  NCom::ModuleScope scope;
  if (!result) return E_INVALIDARG;
  *result = value;
  return S_OK;
}

HRESULT AnswerText(std::string_view text, wchar_t** result) {
  return NCom::Entry([&] { return NCom::HandOut(NCommon::ToWide(text), result); });
}

}  // namespace

bool IsShownObject(std::uint16_t index, std::uint8_t subindex) {
  switch (index) {
    case kDeviceType:
    case kDeviceName:
      return subindex == 0;
    case kIdentity:
      return subindex == kVendorId || subindex == kSerialNumber;
    default:
      return false;
  }
}

void ZCANopenNode::Report(NSdk::ScannerChange change) { mModel.Changed(change, Identity()); }

void ZCANopenNode::SetState(std::uint8_t state) {
  if (state == static_cast<std::uint8_t>(NCanopen::NodeState::BootUp) && mErrorRegister != 0) {
    mErrorRegister = 0;
    Report(NSdk::kNodeErrorChanged);
  }
  if (mState == state) return;
  mState = state;
  Report(NSdk::kNodeStateChanged);
}

void ZCANopenNode::SetMasterPriority(std::string_view master, std::string_view priority) {
  if (mMaster != master) mMaster = master;
  if (mPriority != priority) mPriority = priority;
  Report(NSdk::kNodeMasterSet);
}

void ZCANopenNode::SetErrorRegister(std::uint16_t, std::uint8_t errorRegister) {
  if (mErrorRegister == errorRegister) return;
  mErrorRegister = errorRegister;
  Report(NSdk::kNodeErrorChanged);
}

void ZCANopenNode::Touch() {
  mTimeLeft_ms = kPatience_ms;
  if (mAlive) return;
  mAlive = 1;
  Report(NSdk::kNodeAliveChanged);
}

void ZCANopenNode::Age(std::uint32_t elapsed_ms) {
  if (mTimeLeft_ms > elapsed_ms) {
    mTimeLeft_ms -= elapsed_ms;
  } else if (mAlive) {
    mTimeLeft_ms = 0;
    mAlive = 0;
    Report(NSdk::kNodeAliveChanged);
  }
}

// ---- identity

bool ZCANopenNode::TakeNumber(NSdk::ICANopenDataObject& object, std::uint32_t mask, std::uint32_t& number) {
  std::uint32_t value = 0;
  if (FAILED(object.GetUnsigned(&value))) return false;
  number = value & mask;
  return true;
}

void ZCANopenNode::ApplyUpload(NSdk::ICANopenDataObject* dataObject) {
  NCom::Require(dataObject, "dataObject");
  constexpr std::uint32_t kProfileMask = 0xFFFF;
  std::uint16_t index = 0;
  std::uint8_t subindex = 0;
  if (FAILED(dataObject->GetIndex(&index, &subindex)) || !IsShownObject(index, subindex)) return;
  if (index == kDeviceType) {
    if (TakeNumber(*dataObject, kProfileMask, mProfile)) Report(NSdk::kNodeProfileSet);
  } else if (index == kDeviceName) {
    char name[128] = {};
    if (FAILED(dataObject->GetString(sizeof(name), name))) return;
    mName = name;
    Report(NSdk::kNodeNameSet);
  } else if (subindex == kVendorId) {
    if (TakeNumber(*dataObject, kUnknown, mVendorId)) Report(NSdk::kNodeVendorIdSet);
  } else {
    if (TakeNumber(*dataObject, kUnknown, mSerialNumber)) Report(NSdk::kNodeSerialNumberSet);
  }
}

// Null: not one of the numbers that are kept.
const std::uint32_t* ZCANopenNode::FindNumber(std::uint16_t index, std::uint8_t subindex) const {
  if (!IsShownObject(index, subindex) || index == kDeviceName) return nullptr;
  if (index == kDeviceType) return &mProfile;
  return subindex == kVendorId ? &mVendorId : &mSerialNumber;
}

std::string ZCANopenNode::GetObjectText(std::uint16_t index, std::uint8_t subindex) const {
  if (index == kDeviceName && subindex == 0 && !mName.empty()) return mName;
  const std::uint32_t* number = FindNumber(index, subindex);
  if (!number || *number == kUnknown) return kUnknownText;
  return std::to_string(static_cast<std::int32_t>(*number));
}

// ---- read by views and hosts

HRESULT ZCANopenNode::GetNodeId(std::uint32_t* nodeId) { return Answer(mNodeId, nodeId); }
HRESULT ZCANopenNode::GetChannel(std::uint32_t* channel) { return Answer(mChannel, channel); }
HRESULT ZCANopenNode::GetState(std::uint32_t* state) { return Answer(mState, state); }
HRESULT ZCANopenNode::IsAlive(std::uint32_t* alive) { return Answer(mAlive, alive); }
HRESULT ZCANopenNode::GetErrorRegister(std::uint32_t* errorRegister) {
  return Answer(mErrorRegister, errorRegister);
}
HRESULT ZCANopenNode::GetMaster(wchar_t** text) { return AnswerText(mMaster, text); }
HRESULT ZCANopenNode::GetPriority(wchar_t** text) { return AnswerText(mPriority, text); }

HRESULT ZCANopenNode::GetObjectText(std::uint16_t index, std::uint8_t subindex, wchar_t** text) {
  return NCom::Entry([&] { return NCom::HandOut(NCommon::ToWide(GetObjectText(index, subindex)), text); });
}

HRESULT ZCANopenNode::GetObjectValue(std::uint16_t index, std::uint8_t subindex, std::uint32_t* value) {
  NCom::ModuleScope scope;
  const std::uint32_t* number = FindNumber(index, subindex);
  if (!value || !number) return E_INVALIDARG;
  if (*number == kUnknown) return S_FALSE;
  *value = *number;
  return S_OK;
}

}  // namespace NScanner
