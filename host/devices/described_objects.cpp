#include "host/devices/described_objects.h"

#include <algorithm>
#include <stdexcept>

#include "host/runtime/library_objects.h"
#include "host/runtime/text.h"

namespace NDevices {
namespace {

using namespace CODESCRLDR;
using NRuntime::ComPtr;

constexpr std::uint16_t kFirstObject = 0x1000;  // below stand the data types
constexpr std::uint16_t kErrorHistory = 0x1003;
constexpr std::uint8_t kStructure = 0xFF;  // a sub-index that describes the object itself
constexpr std::uint32_t kLargestValue = 1 << 20;

// A library that fails at this is out of memory.
void Check(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("the description of a device cannot be read: out of memory");
}

using GetValue = HRESULT (STDMETHODCALLTYPE ZCOObject::*)(ZCOObjectValue**);

// Empty: there is none, or it cannot be used.
Bytes BytesOf(ZCOObject& object, GetValue get) {
  ComPtr<ZCOObjectValue> value;
  std::uint32_t size = 0;
  Check((object.*get)(value.Out()));
  if (!value || FAILED(value->GetBytes(0, nullptr, &size))) return {};
  Bytes bytes(size);
  Check(value->GetBytes(size, bytes.data(), &size));
  return bytes;
}

Access AccessOf(ZCOObject& object) {
  AccessType access = kReadWrite;
  Check(object.GetAccessType(&access));
  if (access == kConst) return Access::Constant;
  if (access == kReadOnly) return Access::ReadOnly;
  return access == kWriteOnly ? Access::WriteOnly : Access::ReadWrite;
}

// A type that CiA 301 does not know carries any bytes.
DataType TypeOf(ZCOObject& object) {
  std::uint32_t type = 0, size = 0;
  Check(object.GetDataType(&type));
  Check(object.GetSize(&size));
  const auto known = static_cast<DataType>(type);
  const bool isText =
      known == DataType::VisibleString || known == DataType::OctetString || known == DataType::UnicodeString;
  return isText || (size != 0 && FixedSize(known) == size) ? known : DataType::Domain;
}

// Limits that contradict each other are none.
void SetLimits(ZCOObject& object, Entry& entry) {
  entry.low = BytesOf(object, &ZCOObject::GetLowLimit);
  entry.high = BytesOf(object, &ZCOObject::GetHighLimit);
  if (IsLess(entry.type, entry.high, entry.low)) entry.low = entry.high = {};
}

void AddEntry(ZCOObject& object, ObjectDictionary& objects) {
  Entry entry;
  std::uint32_t mappable = 0;
  Check(object.GetIndex(&entry.address.index, &entry.address.subindex));
  if (entry.address.subindex == kStructure) return;
  Check(object.IsMappable(&mappable));
  entry.type = TypeOf(object);
  entry.access = AccessOf(object);
  entry.mappable = mappable != 0 && entry.HasFixedSize();
  entry.value = BytesOf(object, &ZCOObject::GetValue);
  if (entry.HasFixedSize()) {
    entry.value.resize(FixedSize(entry.type));
    SetLimits(object, entry);
  } else {
    const auto size = static_cast<std::uint32_t>(entry.value.size());
    entry.maxSize = CheckWritable(entry) == AbortCode::None ? std::max(size, kLargestValue) : size;
  }
  objects.Add(std::move(entry));
}

void AddObject(ZCOObject& object, ObjectDictionary& objects) {
  ComPtr<ZCOObjectList> subObjects;
  ComPtr<ZCOObjectListIter> iterator;
  std::uint32_t count = 0;
  Check(object.GetSubObjects(subObjects.Out()));
  Check(subObjects->GetCount(&count));
  if (count == 0) return AddEntry(object, objects);
  Check(subObjects->GetIterator(iterator.Out()));
  for (ComPtr<ZCOObject> sub; iterator->Next(sub.Out()) == S_OK;) AddEntry(*sub, objects);
}

std::string FailureOf(ZCODescrLdr& loader, const std::string& file) {
  NRuntime::ReceivedText text;
  if (loader.GetFinding(0, nullptr, nullptr, text.Out()) != S_OK) return file + ": out of memory";
  return NRuntime::ToUtf8(text.Text());
}

}  // namespace

ObjectDictionary DescribedObjects(ZCODescrLdr& loader) {
  ObjectDictionary objects;
  ComPtr<ZCOObjectList> list;
  ComPtr<ZCOObjectListIter> iterator;
  Check(loader.GetObjects(list.Out()));
  Check(list->GetIterator(iterator.Out()));
  for (ComPtr<ZCOObject> object; iterator->Next(object.Out()) == S_OK;) {
    std::uint16_t index = 0;
    Check(object->GetIndex(&index, nullptr));
    if (index >= kFirstObject) AddObject(*object, objects);
  }
  objects.SetNumber({kErrorHistory, 0}, 0);  // it counts errors, and there are none yet
  return objects;
}

ObjectDictionary LoadDescribedObjects(const std::filesystem::path& libraries, const std::string& file,
                                      std::uint8_t nodeId) {
  const auto loader = NRuntime::MakeDescriptionLoader(libraries);
  Check(loader->SetNodeId(nodeId));
  const std::uint32_t result = loader->Load(NRuntime::ToWide(file).c_str());
  if (result != kLoaded && result <= kLastError) throw std::runtime_error(FailureOf(*loader, file));
  return DescribedObjects(*loader);
}

}  // namespace NDevices
