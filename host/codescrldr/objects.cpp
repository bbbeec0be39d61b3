#include "host/codescrldr/objects.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <type_traits>

#include "host/codescrldr/data_types.h"
#include "host/codescrldr/ini_text.h"
#include "host/runtime/com_guard.h"
#include "host/runtime/text.h"

namespace NDescriptions {
namespace {

using namespace CODESCRLDR;
using NRuntime::Guarded;
using NRuntime::HandOut;
using NRuntime::HandOutNew;

HRESULT HandOutText(std::string_view utf8, wchar_t** result) {
  return Guarded([&] { return NRuntime::HandOutText(NRuntime::ToWide(utf8), result); });
}

std::string Hexadecimal(std::uint64_t number) {
  char text[19];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(number));
  return text;
}

bool IsSigned(std::uint32_t type) {
  const DataTypeRow* const row = FindDataType(type);
  return row && row->kind == ValueKind::Signed;
}

class ValueObject final : public NRuntime::Implements<ZCOObjectValue> {
 public:
  ValueObject(Content content, std::uint32_t type, const std::string& text)
      : mContent(std::move(content)), mType(type), mText(text) {}

  HRESULT STDMETHODCALLTYPE GetSourceText(wchar_t** text) override { return HandOutText(mText, text); }

  HRESULT STDMETHODCALLTYPE GetText(wchar_t** text) override {
    return Guarded([&] {
      const auto value = IsNodeIdFormula() ? Integer() : std::nullopt;
      return HandOutText(value ? Hexadecimal(*value) : std::string(Plain()), text);
    });
  }

  HRESULT STDMETHODCALLTYPE GetNumber(std::int64_t* number) override {
    return Guarded([&] {
      const auto value = Integer();
      if (!value || (*value >> 63 != 0 && !IsSigned(mType))) return E_FAIL;
      return HandOut(static_cast<std::int64_t>(*value), number);
    });
  }

  HRESULT STDMETHODCALLTYPE GetReal(double* number) override {
    return Guarded([&] {
      if (const auto real = ReadReal(mType, mText)) return HandOut(*real, number);
      const auto value = Integer();
      if (!value) return E_FAIL;
      const auto real = IsSigned(mType) ? static_cast<double>(static_cast<std::int64_t>(*value))
                                        : static_cast<double>(*value);
      return HandOut(real, number);
    });
  }

  HRESULT STDMETHODCALLTYPE GetBytes(std::uint32_t bufferSize, std::uint8_t* buffer,
                                     std::uint32_t* size) override {
    return Guarded([&] {
      const auto bytes = ReadBytes(mType, mText, mContent->nodeId);
      if (!bytes) return E_FAIL;
      if (buffer) std::copy_n(bytes->begin(), std::min<std::size_t>(bufferSize, bytes->size()), buffer);
      return HandOut(static_cast<std::uint32_t>(bytes->size()), size);
    });
  }

  HRESULT STDMETHODCALLTYPE IsFormula(std::uint32_t* formula) override {
    return Guarded([&] { return HandOut<std::uint32_t>(IsNodeIdFormula(), formula); });
  }

 private:
  std::optional<std::uint64_t> Integer() const {
    const auto value = ReadInteger(mType, mText, mContent->nodeId);
    return value ? std::optional(value->bits) : std::nullopt;
  }

  // A text of a string may look like one.
  bool IsNodeIdFormula() const {
    const DataTypeRow* const row = FindDataType(mType);
    if (!row || (row->kind != ValueKind::Unsigned && row->kind != ValueKind::Signed)) return false;
    const auto number = ParseNumber(mText);
    return number && number->hasNodeId;
  }

  std::string_view Plain() const {
    const DataTypeRow* const row = FindDataType(mType);
    return row && row->size == 0 ? Unquoted(mText) : std::string_view(mText);
  }

  const Content mContent;
  const std::uint32_t mType;
  const std::string& mText;
};

const std::vector<SubObject> kNoSubObjects;

class ObjectObject final : public NRuntime::Implements<ZCOObject> {
 public:
  ObjectObject(Content content, const SubObject& object)
      : ObjectObject(std::move(content), object, kNoSubObjects) {}
  ObjectObject(Content content, const Object& object)
      : ObjectObject(std::move(content), object, object.subObjects) {}

  HRESULT STDMETHODCALLTYPE GetIndex(std::uint16_t* index, std::uint8_t* subindex) override {
    if (index) *index = mObject.index;
    if (subindex) *subindex = mObject.subindex;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override { return HandOutText(mObject.name, name); }
  HRESULT STDMETHODCALLTYPE GetObjectType(std::uint32_t* type) override {
    return HandOut(mObject.objectType, type);
  }
  HRESULT STDMETHODCALLTYPE GetDataType(std::uint32_t* type) override {
    return HandOut(mObject.dataType, type);
  }
  HRESULT STDMETHODCALLTYPE GetTypeName(wchar_t** name) override {
    return Guarded([&] { return HandOutText(TypeName(), name); });
  }
  HRESULT STDMETHODCALLTYPE GetSize(std::uint32_t* size) override {
    const DataTypeRow* const row = FindDataType(mObject.dataType);
    return HandOut(row ? row->size : 0, size);
  }
  HRESULT STDMETHODCALLTYPE GetAccessType(AccessType* access) override {
    return HandOut(mObject.access, access);
  }
  HRESULT STDMETHODCALLTYPE IsReadOnly(std::uint32_t* readOnly) override {
    return HandOut<std::uint32_t>(mObject.access == kReadOnly || mObject.access == kConst, readOnly);
  }
  HRESULT STDMETHODCALLTYPE IsMappable(std::uint32_t* mappable) override {
    return HandOut<std::uint32_t>(mObject.isMappable, mappable);
  }
  HRESULT STDMETHODCALLTYPE GetObjectFlags(std::uint32_t* flags) override {
    return HandOut(mObject.flags, flags);
  }
  HRESULT STDMETHODCALLTYPE GetValue(ZCOObjectValue** value) override {
    return HandOutValue(mObject.value, value);
  }
  HRESULT STDMETHODCALLTYPE GetDefaultValue(ZCOObjectValue** value) override {
    return HandOutValue(mObject.defaultValue, value);
  }
  HRESULT STDMETHODCALLTYPE GetLowLimit(ZCOObjectValue** value) override {
    return HandOutValue(mObject.lowLimit, value);
  }
  HRESULT STDMETHODCALLTYPE GetHighLimit(ZCOObjectValue** value) override {
    return HandOutValue(mObject.highLimit, value);
  }
  HRESULT STDMETHODCALLTYPE GetSubObjects(ZCOObjectList** objects) override;

 private:
  std::string TypeName() const {
    const DataTypeRow* const row = FindDataType(mObject.dataType);
    if (!mSubObjects.empty() || (!row && mObject.dataType == 0)) {
      if (mObject.objectType == kObjectArray) return "ARRAY";
      if (mObject.objectType == kObjectRecord) return "RECORD";
    }
    return row && mObject.dataType == row->code ? row->name : Hexadecimal(mObject.dataType);
  }

  HRESULT HandOutValue(const std::string& text, ZCOObjectValue** value) {
    return text.empty() ? S_FALSE : HandOutNew<ValueObject>(value, mContent, mObject.dataType, text);
  }

  ObjectObject(Content content, const SubObject& object, const std::vector<SubObject>& subObjects)
      : mContent(std::move(content)), mObject(object), mSubObjects(subObjects) {}

  const Content mContent;
  const SubObject& mObject;
  const std::vector<SubObject>& mSubObjects;
};

template <class Item>
class Iterator final : public NRuntime::Implements<ZCOObjectListIter> {
 public:
  Iterator(Content content, const std::vector<Item>& objects)
      : mContent(std::move(content)), mObjects(objects) {}

  HRESULT STDMETHODCALLTYPE Next(ZCOObject** object) override {
    if (mNext == mObjects.size()) return S_FALSE;
    const HRESULT result = HandOutNew<ObjectObject>(object, mContent, mObjects[mNext]);
    if (SUCCEEDED(result)) ++mNext;
    return result;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    mNext = 0;
    return S_OK;
  }

 private:
  const Content mContent;
  const std::vector<Item>& mObjects;
  std::size_t mNext = 0;
};

template <class Item>
class List final : public NRuntime::Implements<ZCOObjectList> {
 public:
  List(Content content, const std::vector<Item>& objects) : mContent(std::move(content)), mObjects(objects) {}

  HRESULT STDMETHODCALLTYPE GetCount(std::uint32_t* count) override {
    return HandOut(static_cast<std::uint32_t>(mObjects.size()), count);
  }
  HRESULT STDMETHODCALLTYPE GetAt(std::uint32_t position, ZCOObject** object) override {
    return position < mObjects.size() ? HandOutNew<ObjectObject>(object, mContent, mObjects[position])
                                      : E_INVALIDARG;
  }
  HRESULT STDMETHODCALLTYPE Find(std::uint16_t number, ZCOObject** object) override {
    const auto numberOf = [](const Item& one) {
      return std::is_same_v<Item, Object> ? one.index : std::uint16_t{one.subindex};
    };
    const auto found = std::ranges::lower_bound(mObjects, number, {}, numberOf);
    if (found == mObjects.end() || numberOf(*found) != number) return S_FALSE;
    return HandOutNew<ObjectObject>(object, mContent, *found);
  }
  HRESULT STDMETHODCALLTYPE GetIterator(ZCOObjectListIter** iterator) override {
    return HandOutNew<Iterator<Item>>(iterator, mContent, mObjects);
  }

 private:
  const Content mContent;
  const std::vector<Item>& mObjects;
};

HRESULT ObjectObject::GetSubObjects(ZCOObjectList** objects) {
  return HandOutNew<List<SubObject>>(objects, mContent, mSubObjects);
}

}  // namespace

HRESULT HandOutList(const Content& content, const std::vector<Object>& objects, ZCOObjectList** result) {
  return HandOutNew<List<Object>>(result, content, objects);
}

}  // namespace NDescriptions
