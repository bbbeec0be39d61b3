#include "host/bench/describe.h"

#include <nlohmann/json.hpp>

#include <algorithm>

#include "host/bench/console.h"
#include "host/bench/description.h"
#include "host/bench/node_document.h"
#include "host/bench/node_words.h"
#include "host/bench/text_table.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kLongestName = 48;  // characters of a name in the table

using Row = std::vector<std::wstring>;

std::wstring RangeText(const DescribedSubObject& object) {
  if (!object.low && !object.high) return {};
  return Printable(object.low.value_or("") + ".." + object.high.value_or(""));
}

std::wstring NameText(const DescribedSubObject& object, bool isSub) {
  std::wstring name = Printable(object.name);
  if (name.size() > kLongestName) name = name.substr(0, kLongestName - 3) + L"...";
  return (isSub ? L"  " : L"") + name;
}

Row SubObjectRow(const DescribedSubObject& object, bool isSub) {
  return {HexDigits(object.index, 4), isSub ? HexDigits(object.subindex, 2) : L"",
          NameText(object, isSub),    Printable(object.type),
          Printable(object.access),   object.mappable ? L"P" : L"",
          RangeText(object),          Printable(object.value.value_or(""))};
}

void AddRows(const DescribedObject& object, std::vector<Row>& rows) {
  if (object.subObjects.empty()) return rows.push_back(SubObjectRow(object, false));
  rows.push_back({HexDigits(object.index, 4), L"", NameText(object, false), Printable(object.type)});
  for (const DescribedSubObject& sub : object.subObjects) rows.push_back(SubObjectRow(sub, true));
}

std::size_t CountValues(const std::vector<DescribedObject>& objects) {
  std::size_t count = 0;
  for (const DescribedObject& object : objects) count += std::max<std::size_t>(1, object.subObjects.size());
  return count;
}

std::string HeadText(const DeviceDescription& description) {
  std::string text;
  const auto add = [&](const char* title, const std::string& value) {
    if (!value.empty()) text += title + NRuntime::ToUtf8(Printable(value)) + '\n';
  };
  add("Vendor    ", description.vendor);
  add("Product   ", description.product);
  if (description.nodeId) add("Node-ID   ", std::to_string(*description.nodeId));
  if (description.bitRate) add("Bit rate  ", std::to_string(*description.bitRate / 1000) + " kbit/s");
  return text.empty() ? text : text + '\n';
}

std::string DescriptionText(const DeviceDescription& description) {
  std::vector<Row> rows = {{L"Index", L"Sub", L"Name", L"Type", L"Access", L"PDO", L"Range", L"Value"}};
  for (const DescribedObject& object : description.objects) AddRows(object, rows);
  return HeadText(description) + ColumnsText(rows) + CountText(description.objects.size(), "object") + ", " +
         CountText(CountValues(description.objects), "value") + ", " +
         (description.warnings.empty() ? "no warnings" : CountText(description.warnings.size(), "warning")) +
         '\n';
}

template <class Value>
Json OrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

void AddValues(const DescribedSubObject& object, Json& document) {
  document.update(Json{{"name", object.name},
                       {"objectType", object.objectType},
                       {"dataType", object.dataType},
                       {"type", object.type},
                       {"access", object.access},
                       {"mappable", object.mappable},
                       {"value", OrNull(object.value)},
                       {"number", OrNull(object.number)},
                       {"low", OrNull(object.low)},
                       {"high", OrNull(object.high)}});
}

Json ObjectDocument(const DescribedObject& object) {
  Json document = {{"index", object.index}};
  AddValues(object, document);
  document["subObjects"] = Json::array();
  for (const DescribedSubObject& sub : object.subObjects) {
    Json subDocument = {{"index", sub.index}, {"subindex", sub.subindex}};
    AddValues(sub, subDocument);
    document["subObjects"].push_back(std::move(subDocument));
  }
  return document;
}

Json DescriptionDocument(const DeviceDescription& description) {
  Json document = {{"vendor", description.vendor},
                   {"product", description.product},
                   {"nodeId", OrNull(description.nodeId)},
                   {"bitRate", OrNull(description.bitRate)},
                   {"objects", Json::array()},
                   {"warnings", Json::array()}};
  for (const DescribedObject& object : description.objects) {
    document["objects"].push_back(ObjectDocument(object));
  }
  for (const DescriptionWarning& warning : description.warnings) {
    document["warnings"].push_back({{"line", warning.line}, {"code", warning.code}, {"text", warning.text}});
  }
  return document;
}

}  // namespace

ExitStatus Describe(const DescribeOptions& options) {
  const DeviceDescription description = LoadDescription(options.file, options.nodeId);
  Output output;
  if (options.json) {
    output.Write(DocumentText(DescriptionDocument(description)));
  } else {
    for (const DescriptionWarning& warning : description.warnings) {
      WriteError(NRuntime::ToUtf8(Printable(warning.text)));
    }
    output.Write(DescriptionText(description));
  }
  return output.End() ? kOk : kFailed;
}

}  // namespace NBench
