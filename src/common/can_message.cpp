#include "common/can_message.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "com/entry.h"
#include "com/implements.h"
#include "com/task_text.h"
#include "common/scan_integer.h"
#include "common/text.h"
#include "sdk/class_ids.h"
#include "sdk/persistence.h"

namespace NCommon {
namespace {

constexpr std::uint32_t kIdentifierMask = 0x7FFFFFFF;
constexpr std::size_t kMaxStoredBytes = 8;
// A stored value never exceeds a buffer of 128 characters with its end mark.
constexpr std::size_t kMaxValueText = 127;

struct NumberKey {
  const wchar_t* key;
  std::uint32_t CanMessageRecord::*field;
};

constexpr NumberKey kNumberKeys[] = {
    {L"CAN_ID", &CanMessageRecord::identifier}, {L"Extended", &CanMessageRecord::extended},
    {L"Channel", &CanMessageRecord::channel},   {L"Dir", &CanMessageRecord::direction},
    {L"RTR", &CanMessageRecord::remote},
};
constexpr wchar_t kDataKey[] = L"Data";

std::vector<std::uint8_t> ScanBytes(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  while (bytes.size() < kMaxStoredBytes) {
    const auto value = ScanInteger(text, ScanBase::Automatic);
    if (!value) break;
    bytes.push_back(static_cast<std::uint8_t>(*value & 0xFF));
  }
  return bytes;
}

std::wstring BytesText(const std::vector<std::uint8_t>& bytes) {
  std::wstring text;
  for (const std::uint8_t byte : bytes) {
    const std::wstring next = (text.empty() ? L"" : L" ") + std::to_wstring(byte);
    if (text.size() + next.size() > kMaxValueText) break;
    text += next;
  }
  return text;
}

class ZCANMessage final : public NCom::Implements<NSdk::ICANMessage, NSdk::IPersistentObject> {
 public:
  explicit ZCANMessage(CanMessageRecord record) : mRecord(std::move(record)) {}

  HRESULT STDMETHODCALLTYPE GetIdentifier(std::uint32_t* identifier) override {
    return Answer(identifier, mRecord.identifier & kIdentifierMask);
  }
  HRESULT STDMETHODCALLTYPE GetExtended(std::uint32_t* extended) override {
    return Answer(extended, mRecord.extended);
  }
  HRESULT STDMETHODCALLTYPE GetDataLength(std::uint32_t* size) override {
    return Answer(size, static_cast<std::uint32_t>(mRecord.data.size()));
  }
  HRESULT STDMETHODCALLTYPE GetChannel(std::uint32_t* channel) override {
    return Answer(channel, mRecord.channel);
  }
  HRESULT STDMETHODCALLTYPE GetDirection(std::uint32_t* direction) override {
    return Answer(direction, mRecord.direction);
  }
  HRESULT STDMETHODCALLTYPE GetRemote(std::uint32_t* remote) override {
    return Answer(remote, mRecord.remote);
  }
  HRESULT STDMETHODCALLTYPE GetTimeStamp(std::int64_t* time_ns) override {
    return Answer(time_ns, mRecord.time_ns);
  }
  HRESULT STDMETHODCALLTYPE CopyData(std::uint32_t offset, std::uint8_t* buffer,
                                     std::uint32_t size) override {
    NCom::ModuleScope scope;
    if (size != 0) std::memcpy(buffer, mRecord.data.data() + offset, size);
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetProgId(wchar_t** progId) override {
    return NCom::Entry([&] { return NCom::HandOut(NSdk::kProgIdCANMessage, progId); });
  }
  HRESULT STDMETHODCALLTYPE Load(NSdk::IPersistReader* reader) override {
    return NCom::Entry([&] {
      NCom::Require(reader, "reader");
      LoadFrom(*reader);
    });
  }
  HRESULT STDMETHODCALLTYPE Save(NSdk::IPersistWriter* writer) override {
    return NCom::Entry([&] {
      NCom::Require(writer, "writer");
      return SaveTo(*writer);
    });
  }

 private:
  template <class Value>
  static HRESULT Answer(Value* result, Value value) {
    NCom::ModuleScope scope;
    *result = value;
    return S_OK;
  }

  // The first key that is missing ends it: what follows keeps its values.
  void LoadFrom(NSdk::IPersistReader& reader) {
    NCom::TaskText text;
    for (const auto& [key, field] : kNumberKeys) {
      if (reader.ReadText(key, text.Receive()) != S_OK) return;
      const std::string digits = ToItemText(text.Text());
      std::string_view rest = digits;
      if (const auto value = ScanInteger(rest, ScanBase::Decimal)) mRecord.*field = *value;
    }
    if (reader.ReadText(kDataKey, text.Receive()) != S_OK) return;
    mRecord.data = ScanBytes(ToItemText(text.Text()));
  }

  HRESULT SaveTo(NSdk::IPersistWriter& writer) const {
    for (const auto& [key, field] : kNumberKeys) {
      const HRESULT result = writer.WriteText(key, std::to_wstring(mRecord.*field).c_str());
      if (FAILED(result)) return result;
    }
    return writer.WriteText(kDataKey, BytesText(mRecord.data).c_str());
  }

  CanMessageRecord mRecord;
};

}  // namespace

NCom::ComPtr<NSdk::ICANMessage> MakeCanMessage(CanMessageRecord record) {
  return NCom::Make<ZCANMessage>(std::move(record)).Get();
}

}  // namespace NCommon
