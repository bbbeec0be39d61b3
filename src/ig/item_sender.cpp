#include "ig/item_sender.h"

#include <optional>

#include "canopen/frames.h"
#include "canopen/message_items.h"
#include "editors/typed_data.h"

namespace NIg {

bool EncodeData(std::string& text, std::uint32_t size, const std::filesystem::path& dataFolder,
                std::vector<std::uint8_t>& bytes) {
  // From now on, so that the list shows what is sent.
  if (NEditors::GetDataType(text) == NEditors::kDataUntyped) {
    NEditors::AddDataPrefix(text, NEditors::kDataByteArray);
  }
  return NEditors::ParseTypedData(text, bytes, size, dataFolder);
}

namespace {

std::optional<NSdk::CanFrame> EncodePdo(NCanopen::PdoRecord& record,
                                        const std::filesystem::path& dataFolder) {
  std::vector<std::uint8_t> bytes;
  if (!EncodeData(record.data, record.dlc, dataFolder, bytes)) return std::nullopt;
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
