#include "host/bench/description.h"

#include <stdexcept>

#include "host/bench/console.h"
#include "host/runtime/library_objects.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

using namespace CODESCRLDR;
using NRuntime::ComPtr;
using NRuntime::ReceivedText;

constexpr const char* kAccess[] = {"rw", "wo", "ro", "const", "rwr", "rww"};

std::string Utf8(const ReceivedText& text) { return NRuntime::ToUtf8(text.Text()); }

// What a library does not answer is out of memory.
void Check(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("the description cannot be read: out of memory");
}

template <class Object, class Number>
Number Get(Object& object, HRESULT (STDMETHODCALLTYPE Object::*get)(Number*)) {
  Number number{};
  Check((object.*get)(&number));
  return number;
}

std::string GetText(ZCOObject& object, HRESULT (STDMETHODCALLTYPE ZCOObject::*get)(wchar_t**)) {
  ReceivedText text;
  Check((object.*get)(text.Out()));
  return Utf8(text);
}

using GetValueMethod = HRESULT (STDMETHODCALLTYPE ZCOObject::*)(ZCOObjectValue**);

std::optional<std::string> ValueText(ZCOObject& object, GetValueMethod get) {
  ComPtr<ZCOObjectValue> value;
  Check((object.*get)(value.Out()));
  if (!value) return std::nullopt;
  ReceivedText text;
  Check(value->GetText(text.Out()));
  return Utf8(text);
}

std::optional<std::int64_t> ValueNumber(ZCOObject& object) {
  ComPtr<ZCOObjectValue> value;
  std::int64_t number = 0;
  Check(object.GetValue(value.Out()));
  return value && SUCCEEDED(value->GetNumber(&number)) ? std::optional(number) : std::nullopt;
}

void ReadValues(ZCOObject& object, DescribedSubObject& described) {
  Check(object.GetIndex(&described.index, &described.subindex));
  described.name = GetText(object, &ZCOObject::GetName);
  described.type = GetText(object, &ZCOObject::GetTypeName);
  described.objectType = Get(object, &ZCOObject::GetObjectType);
  described.dataType = Get(object, &ZCOObject::GetDataType);
  described.mappable = Get(object, &ZCOObject::IsMappable) != 0;
  const AccessType access = Get(object, &ZCOObject::GetAccessType);
  if (access < std::size(kAccess)) described.access = kAccess[access];
  described.value = ValueText(object, &ZCOObject::GetValue);
  described.low = ValueText(object, &ZCOObject::GetLowLimit);
  described.high = ValueText(object, &ZCOObject::GetHighLimit);
  described.number = ValueNumber(object);
}

template <class Read>
void ForEach(ZCOObjectList& list, Read read) {
  ComPtr<ZCOObjectListIter> iterator;
  Check(list.GetIterator(iterator.Out()));
  for (ComPtr<ZCOObject> object; iterator->Next(object.Out()) == S_OK;) read(*object);
}

DescribedObject ReadObject(ZCOObject& object) {
  DescribedObject described;
  ReadValues(object, described);
  ComPtr<ZCOObjectList> subObjects;
  Check(object.GetSubObjects(subObjects.Out()));
  ForEach(*subObjects, [&](ZCOObject& sub) { ReadValues(sub, described.subObjects.emplace_back()); });
  return described;
}

DescriptionWarning ReadFinding(ZCODescrLdr& loader, std::uint32_t position) {
  DescriptionWarning warning;
  ReceivedText text;
  Check(loader.GetFinding(position, &warning.code, &warning.line, text.Out()));
  warning.text = Utf8(text);
  return warning;
}

std::string Information(ZCODescrLdr& loader, const wchar_t* key) {
  ReceivedText text;
  Check(loader.GetInformation(L"DeviceInfo", key, text.Out()));
  return Utf8(text);
}

}  // namespace

DeviceDescription LoadDescription(const std::filesystem::path& file, std::optional<std::uint32_t> nodeId) {
  const auto loader = NRuntime::MakeDescriptionLoader(ProgramFolder());
  Check(loader->SetNodeId(nodeId.value_or(0)));
  const std::uint32_t result = loader->Load(NRuntime::WidePathText(file).c_str());
  if (result != kLoaded && result <= kLastError) {
    const auto count = Get(*loader, &ZCODescrLdr::GetFindingCount);
    throw std::runtime_error(count != 0 ? ReadFinding(*loader, 0).text
                                        : NRuntime::PathText(file) + ": out of memory");
  }
  DeviceDescription description;
  const auto count = Get(*loader, &ZCODescrLdr::GetFindingCount);
  for (std::uint32_t i = 0; i < count; ++i) description.warnings.push_back(ReadFinding(*loader, i));
  description.vendor = Information(*loader, L"VendorName");
  description.product = Information(*loader, L"ProductName");
  std::uint32_t number = 0;
  if (loader->GetNodeId(&number) == S_OK) description.nodeId = number;
  if (loader->GetBitRate(&number) == S_OK) description.bitRate = number;
  ComPtr<ZCOObjectList> objects;
  Check(loader->GetObjects(objects.Out()));
  ForEach(*objects, [&](ZCOObject& object) { description.objects.push_back(ReadObject(object)); });
  return description;
}

}  // namespace NBench
