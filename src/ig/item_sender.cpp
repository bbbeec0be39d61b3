#include "ig/item_sender.h"

#include <optional>
#include <vector>

#include "canopen/frames.h"
#include "canopen/message_items.h"
#include "editors/typed_data.h"

namespace NIg {
namespace {

// A text without a type is a byte array from now on, so that the list shows what is sent.
void NameType(std::string& text) {
  if (NEditors::GetDataType(text) == NEditors::kDataUntyped) {
    NEditors::AddDataPrefix(text, NEditors::kDataByteArray);
  }
}

std::optional<NSdk::CanFrame> EncodePdo(NCanopen::PdoRecord& record,
                                        const std::filesystem::path& dataFolder) {
  NameType(record.data);
  std::vector<std::uint8_t> bytes;
  if (!NEditors::ParseTypedData(record.data, bytes, record.dlc, dataFolder)) return std::nullopt;
  return NCanopen::PdoFrame(record.cobId, bytes);
}

}  // namespace

bool SendFrameItem(NCanopen::ZMsgItemInfo& item, NSdk::ICANOutput& output,
                   const std::filesystem::path& dataFolder) {
  auto* pdo = dynamic_cast<NCanopen::ZPDOItemInfo*>(&item);
  const auto frame = pdo ? EncodePdo(pdo->record, dataFolder) : NCanopen::FrameOf(item);
  if (!frame) return false;
  output.Transmit(&*frame);
  return true;
}

}  // namespace NIg
