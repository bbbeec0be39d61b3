// Any bytes as items of the clipboard: what they give can be shown, copied, encoded and put into a sequence
// file, and comes back from its own text as it went.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "canopen/frames.h"
#include "editors/typed_data.h"
#include "ig/item_clipboard.h"
#include "ig/item_sender.h"
#include "ig/sequence_file_text.h"

namespace {

using NCanopen::ZMsgItemInfo;

void Require(bool condition) {
  if (!condition) std::abort();
}

std::string TextOf(const NCanopen::ItemList& items) {
  std::vector<const ZMsgItemInfo*> borrowed;
  for (const auto& item : items) borrowed.push_back(item.get());
  return NIg::WriteItems(borrowed);
}

void CheckData(std::string text) {
  bool exact = false;
  const NIg::XmlText inFile = NIg::DataForFile(text, &exact);
  if (exact && NEditors::GetDataType(text) != NEditors::kDataString) Require(NIg::ToLocal(inFile) == text);
  if (NEditors::GetDataType(text) == NEditors::kDataFile) return;  // opens what a fuzzer has thought of
  std::vector<std::uint8_t> bytes;
  if (NIg::EncodeData(text, 8, {}, bytes)) Require(bytes.size() == 8);
}

void CheckItem(const ZMsgItemInfo& item) {
  Require(!item.GetAttributesText().empty() && !item.GetCycleText().empty() && !item.GetDelayText().empty());
  const auto frame = NCanopen::FrameOf(item);
  Require(!frame || frame->identifier <= 0x1FFF'FFFF);
  for (const NCanopen::ItemField& field : NCanopen::KindOf(item).fields) {
    if (field.text) CheckData(field.text(item));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const bool hexDisplay = size % 2 != 0;
  const NCanopen::ItemList items = NIg::ReadItems(text, &hexDisplay);
  NCanopen::ItemList copies;
  for (const auto& item : items) {
    CheckItem(*item);
    copies.push_back(NCanopen::CopyItem(*item));
  }
  const std::string written = TextOf(items);
  const NCanopen::ItemList again = NIg::ReadItems(written, &hexDisplay);
  Require(again.size() == items.size() && TextOf(again) == written && TextOf(copies) == written);
  return 0;
}
