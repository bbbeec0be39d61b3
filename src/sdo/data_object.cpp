#include "sdo/data_object.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "com/entry.h"
#include "com/implements.h"

namespace NSdo {
namespace {

using Buffer = std::unique_ptr<std::uint8_t[]>;

class ZCANopenDataObject final : public NCom::Implements<NSdk::ICANopenDataObject> {
 public:
  ZCANopenDataObject(std::uint16_t index, std::uint8_t subindex, std::uint32_t size, std::uint32_t value)
      : mIndex(index), mSubindex(subindex), mValue(value), mSize(size) {
    if (!IsInline()) mBuffer = std::make_unique_for_overwrite<std::uint8_t[]>(size);
  }

  HRESULT STDMETHODCALLTYPE GetIndex(std::uint16_t* index, std::uint8_t* subindex) override {
    NCom::ModuleScope scope;
    if (index) *index = mIndex;
    if (subindex) *subindex = mSubindex;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetSize(std::uint32_t* size) override {
    NCom::ModuleScope scope;
    if (!size) return E_INVALIDARG;
    *size = mSize;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetUnsigned(std::uint32_t* value) override { return Get(value); }
  HRESULT STDMETHODCALLTYPE GetSigned(std::int32_t* value) override { return Get(value); }
  HRESULT STDMETHODCALLTYPE GetFloat(float* value) override { return Get(value); }

  HRESULT STDMETHODCALLTYPE GetString(std::uint32_t bufferSize, char* text) override {
    NCom::ModuleScope scope;
    if (!text || bufferSize == 0) return E_INVALIDARG;
    const std::uint32_t size = std::min(mSize, bufferSize - 1);
    std::memcpy(text, Bytes(), size);
    text[size] = '\0';
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetBytes(std::uint32_t bufferSize, std::uint8_t* data,
                                     std::uint32_t* copied) override {
    NCom::ModuleScope scope;
    const std::uint32_t size = std::min(mSize, bufferSize);
    if (!copied || (!data && size != 0)) return E_INVALIDARG;
    if (size != 0) std::memcpy(data, Bytes(), size);
    *copied = size;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE FreeValue() override {
    NCom::ModuleScope scope;
    mBuffer.reset();
    mSize = 0;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE WriteBytes(std::uint32_t offset, std::uint32_t count,
                                       const std::uint8_t* data) override {
    NCom::ModuleScope scope;
    if (std::uint64_t{offset} + count > mSize || (!data && count != 0)) return E_INVALIDARG;
    if (count != 0) std::memcpy(Bytes() + offset, data, count);
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE SetValue(std::uint32_t size, const std::uint8_t* data) override {
    return NCom::Entry([&] {
      Buffer buffer;
      if (size > sizeof(mValue)) {
        buffer = std::make_unique<std::uint8_t[]>(size);
        if (data) std::memcpy(buffer.get(), data, size);
      } else if (data) {
        mValue = 0;
        std::memcpy(&mValue, data, size);
      }
      mBuffer = std::move(buffer);
      mSize = size;
    });
  }

 private:
  bool IsInline() const { return mSize <= sizeof(mValue); }
  std::uint8_t* Bytes() { return IsInline() ? reinterpret_cast<std::uint8_t*>(&mValue) : mBuffer.get(); }

  template <class Number>
  HRESULT Get(Number* value) {
    NCom::ModuleScope scope;
    if (!value) return E_INVALIDARG;
    if (!IsInline()) return E_FAIL;
    *value = static_cast<Number>(mValue);
    return S_OK;
  }

  std::uint16_t mIndex;
  std::uint8_t mSubindex;
  std::uint32_t mValue;  // up to four bytes, little-endian as the machine is
  Buffer mBuffer;        // more than four
  std::uint32_t mSize;
};

}  // namespace

NCom::ComPtr<NSdk::ICANopenDataObject> CreateDataObject(std::uint16_t index, std::uint8_t subindex,
                                                        std::uint32_t size) {
  return CreateDataObjectWithValue(index, subindex, size, 0);
}

NCom::ComPtr<NSdk::ICANopenDataObject> CreateDataObjectWithValue(std::uint16_t index, std::uint8_t subindex,
                                                                 std::uint32_t size, std::uint32_t value) {
  return NCom::Make<ZCANopenDataObject>(index, subindex, size, value).Get();
}

}  // namespace NSdo
