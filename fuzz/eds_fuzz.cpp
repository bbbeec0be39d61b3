// Any bytes as an EDS or DCF file, behind a byte with the node-ID: they are read to the end, and what comes
// out holds together.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <type_traits>

#include "host/codescrldr/data_types.h"
#include "host/codescrldr/description_reader.h"
#include "host/runtime/file_text.h"

namespace {

using namespace NDescriptions;

void Require(bool condition) {
  if (!condition) std::abort();
}

void CheckValue(const SubObject& object, const std::string& text, std::optional<std::uint32_t> nodeId) {
  if (text.empty()) return;
  const DataTypeRow* const type = FindDataType(object.dataType);
  const auto bytes = ReadBytes(object.dataType, text, nodeId);
  if (bytes && type->size != 0) Require(bytes->size() == type->size);
  const auto integer = ReadInteger(object.dataType, text, nodeId);
  Require(!integer || bytes);
  Require(!ReadReal(object.dataType, text) || bytes);
}

template <class Item>
void CheckObjects(const std::vector<Item>& objects, std::optional<std::uint32_t> nodeId) {
  const Item* last = nullptr;
  for (const Item& object : objects) {
    Require(!last || last->index < object.index || last->subindex < object.subindex);
    Require(object.access <= CODESCRLDR::kReadWriteOutput);
    for (const std::string* text :
         {&object.value, &object.defaultValue, &object.lowLimit, &object.highLimit}) {
      CheckValue(object, *text, nodeId);
    }
    if constexpr (std::is_same_v<Item, Object>) CheckObjects(object.subObjects, nodeId);
    last = &object;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::uint32_t node = data[0] & 0x7F;
  const std::string text = NRuntime::DecodeText(std::string(data + 1, data + size));
  const Description description =
      ReadDescription(text, node != 0 ? std::optional<std::uint32_t>(node) : std::nullopt);
  const auto lines =
      std::count_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }) + 1;
  for (const Finding& finding : description.findings) {
    Require(finding.code > CODESCRLDR::kLastError && finding.line <= static_cast<std::uint32_t>(lines));
    Require(!finding.text.empty() && finding.text.find('\n') == std::string::npos);
  }
  Require(description.isRecognised || description.objects.empty());
  CheckObjects(description.objects, description.nodeId);
  return 0;
}
