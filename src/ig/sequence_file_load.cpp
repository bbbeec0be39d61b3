#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <xercesc/dom/DOM.hpp>

#include "ig/sequence_file.h"
#include "ig/sequence_file_text.h"
#include "ig/sequence_file_xml.h"

namespace NIg {

namespace {

using NCanopen::InFile;
using NCanopen::ItemField;

// The text of an attribute; nothing when the element does not have it.
std::optional<std::string> Attribute(const xercesc::DOMElement& element, const char* name) {
  const xercesc::DOMAttr* attribute = element.getAttributeNode(FromAscii(name).c_str());
  if (attribute == nullptr) return std::nullopt;
  return ToLocal(attribute->getValue());
}

bool IsRead(InFile inFile, bool cyclic) {
  switch (inFile) {
    case InFile::Optional:
    case InFile::Required:
      return true;
    case InFile::CyclicOnly:
      return cyclic;
    case InFile::WrittenOnly:
    case InFile::Absent:
      break;
  }
  return false;
}

void SetField(NCanopen::ZMsgItemInfo& item, const ItemField& field, std::string text) {
  if (field.encoding == NCanopen::Encoding::Text) {
    field.setText(item, std::move(text));
  } else if (const auto value = ParseNumberText(text, field.encoding)) {
    field.setNumber(item, *value);  // a value too large for the field does not match either
  }
}

// False when a required attribute is missing.
bool ReadFields(const xercesc::DOMElement& element, bool cyclic, NCanopen::ZMsgItemInfo& item) {
  for (const ItemField& field : NCanopen::KindOf(item).fields) {
    if (!IsRead(field.inFile, cyclic)) continue;
    auto text = Attribute(element, field.key);
    if (!text && field.inFile != InFile::Optional) return false;
    if (text) SetField(item, field, std::move(*text));
  }
  return true;
}

// Every element of the cyclic list has both times, those of kinds that do not use them included.
bool HasTimes(const xercesc::DOMElement& element) {
  return Attribute(element, "SendCycle") && Attribute(element, "SendDelay");
}

// Null when the element is no item.
std::unique_ptr<NCanopen::ZMsgItemInfo> ReadItem(const xercesc::DOMElement& element, bool cyclic,
                                                 const bool* hexDisplay) {
  if (cyclic && !HasTimes(element)) return nullptr;
  const auto enabled = Attribute(element, "Enabled");
  if (!enabled) return nullptr;
  const NCanopen::ItemKind* kind = NCanopen::FindItemKind(ToLocal(element.getTagName()));
  if (kind == nullptr) return nullptr;
  auto item = kind->make(hexDisplay);
  if (!ReadFields(element, cyclic, *item)) return nullptr;
  if (const auto value = ParseNumberText(*enabled, NCanopen::Encoding::Decimal)) item->SetEnabled(*value);
  return item;
}

// A list is only read when the document has exactly one element of its name.
NCanopen::ItemList ReadList(const xercesc::DOMDocument& document, const char* tag, bool cyclic,
                            const bool* hexDisplay) {
  NCanopen::ItemList items;
  const xercesc::DOMNodeList* lists = document.getElementsByTagName(FromAscii(tag).c_str());
  if (lists->getLength() != 1) return items;
  // From sibling to sibling: a position in a list of children is counted from its start every time.
  const auto* list = static_cast<const xercesc::DOMElement*>(lists->item(0));
  for (auto* child = list->getFirstElementChild(); child; child = child->getNextElementSibling()) {
    if (auto item = ReadItem(*child, cyclic, hexDisplay)) items.push_back(std::move(item));
  }
  return items;
}

// The content of the file; nothing, and the reason in `fault`, when it is not to be had. Pipes and devices
// are not opened: they may never answer or never end.
std::optional<std::string> ReadFile(const std::filesystem::path& path, std::string& fault) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::is_regular_file(status)) {
    fault = std::filesystem::exists(status) ? "this is not a file" : "there is no such file";
    return std::nullopt;
  }
  const auto size = std::filesystem::file_size(path, error);
  if (error || size > kMaxSequenceFileSize) {
    fault = "the file is too large for a sequence file";
    return std::nullopt;
  }
  std::ifstream file(path, std::ios::binary);
  std::string content(static_cast<std::size_t>(size), '\0');
  file.read(content.data(), static_cast<std::streamsize>(size));
  if (file.bad() || !file.is_open()) {
    fault = "the file cannot be read";
    return std::nullopt;
  }
  content.resize(static_cast<std::size_t>(file.gcount()));
  return content;
}

// Both lists of a file.
struct Lists {
  NCanopen::ItemList sequence;
  NCanopen::ItemList cyclic;
};

bool ReadLists(const std::filesystem::path& path, const bool* hexDisplay, Lists& lists, std::string& fault) {
  const auto content = ReadFile(path, fault);
  if (!content) return false;
  ItemParser parser;
  const xercesc::DOMDocument* document = parser.Parse(*content, fault);
  if (document == nullptr) return false;
  lists.sequence = ReadList(*document, "Sequence", false, hexDisplay);
  lists.cyclic = ReadList(*document, "CyclicMsgs", true, hexDisplay);
  return true;
}

void AppendTo(NCanopen::ItemList& list, NCanopen::ItemList items) {
  std::ranges::move(items, std::back_inserter(list));
}

}  // namespace

int LoadSequenceFile(const std::filesystem::path& path, NCanopen::ItemList& sequence,
                     NCanopen::ItemList& cyclic, const bool* hexDisplay, std::string* fault) {
  std::string unasked;
  std::string& text = fault != nullptr ? *fault : unasked;
  text.clear();
  bool parsed = false;
  Lists lists;
  const bool undisturbed = WithXmlLibrary(text, [&] {
    parsed = ReadLists(path, hexDisplay, lists, text);
    sequence.reserve(sequence.size() + lists.sequence.size());
    cyclic.reserve(cyclic.size() + lists.cyclic.size());
  });
  if (!undisturbed || !parsed) return 0;
  AppendTo(sequence, std::move(lists.sequence));
  AppendTo(cyclic, std::move(lists.cyclic));
  return 1;
}

}  // namespace NIg
