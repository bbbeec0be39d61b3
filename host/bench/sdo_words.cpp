#include <cstdio>

#include "host/bench/sdo_observer.h"

namespace NBench {
namespace {

struct AbortRow {
  std::uint32_t code;
  const char* text;
};

// CiA 301, table of SDO abort codes.
constexpr AbortRow kAbortRows[] = {
    {0x05030000, "toggle bit not alternated"},
    {0x05040000, "SDO protocol timed out"},
    {0x05040001, "command specifier not valid or unknown"},
    {0x05040002, "invalid block size"},
    {0x05040003, "invalid sequence number"},
    {0x05040004, "CRC error"},
    {0x05040005, "out of memory"},
    {0x06010000, "unsupported access to an object"},
    {0x06010001, "read of a write-only object"},
    {0x06010002, "write of a read-only object"},
    {0x06020000, "object does not exist"},
    {0x06040041, "object cannot be mapped to the PDO"},
    {0x06040042, "number and length of mapped objects would exceed PDO length"},
    {0x06040043, "general parameter incompatibility"},
    {0x06040047, "general internal incompatibility in the device"},
    {0x06060000, "access failed due to hardware error"},
    {0x06070010, "data type or length does not match"},
    {0x06070012, "length too high"},
    {0x06070013, "length too low"},
    {0x06090011, "sub-index does not exist"},
    {0x06090030, "invalid value"},
    {0x06090031, "value too high"},
    {0x06090032, "value too low"},
    {0x06090036, "maximum less than minimum"},
    {0x060A0023, "resource not available"},
    {0x08000000, "general error"},
    {0x08000020, "data cannot be transferred or stored"},
    {0x08000021, "because of local control"},
    {0x08000022, "because of the present device state"},
    {0x08000023, "no object dictionary"},
    {0x08000024, "no data available"},
};

constexpr std::size_t kShownData = 16;

const char* KindName(SdoKind kind) {
  switch (kind) {
    case SdoKind::Expedited:
      return "expedited";
    case SdoKind::Segmented:
      return "segmented";
    case SdoKind::Block:
      break;
  }
  return "block";
}

bool IsText(const std::vector<std::uint8_t>& data) {
  if (data.size() < 2) return false;
  for (const std::uint8_t byte : data) {
    if (byte < 0x20 || byte > 0x7E) return false;
  }
  return true;
}

// Short data as it is, text in quotes, long data as its beginning.
std::string DataInWords(const SdoTransfer& transfer) {
  std::string words;
  if (transfer.data.size() == transfer.bytes && IsText(transfer.data) && transfer.bytes <= 2 * kShownData) {
    return '"' + std::string(transfer.data.begin(), transfer.data.end()) + '"';
  }
  char digits[4];
  for (std::size_t i = 0; i < transfer.data.size() && i < kShownData; ++i) {
    std::snprintf(digits, sizeof digits, i == 0 ? "%02X" : " %02X", transfer.data[i]);
    words += digits;
  }
  return transfer.bytes > kShownData ? words + " ..." : words;
}

// Two digits behind the point where a transfer took no time to speak of, as on a bus inside the program.
std::string DurationInWords(const SdoTransfer& transfer) {
  char text[32];
  const double milliseconds =
      std::chrono::duration<double, std::milli>(transfer.ended - transfer.started).count();
  std::snprintf(text, sizeof text, "%.*f ms", milliseconds < 10 ? 2 : 0, milliseconds);
  return text;
}

std::string OutcomeInWords(const SdoTransfer& transfer) {
  if (transfer.outcome == SdoOutcome::Ok) {
    const std::string bytes = std::to_string(transfer.bytes) + (transfer.bytes == 1 ? " byte" : " bytes");
    const std::string data = transfer.data.empty() ? "" : ": " + DataInWords(transfer);
    return bytes + " in " + DurationInWords(transfer) + data;
  }
  if (transfer.abortCode == 0) return "no answer until the end";
  char code[12];
  std::snprintf(code, sizeof code, "%08lX", static_cast<unsigned long>(transfer.abortCode));
  const std::string meaning = AbortText(transfer.abortCode);
  return (transfer.outcome == SdoOutcome::TimedOut ? "timed out after " : "aborted after ") +
         DurationInWords(transfer) + ", " + code + (meaning.empty() ? "" : " (" + meaning + ")");
}

}  // namespace

std::string AbortText(std::uint32_t code) {
  for (const AbortRow& row : kAbortRows) {
    if (row.code == code) return row.text;
  }
  return {};
}

std::string InWords(const SdoTransfer& transfer) {
  char text[96];
  std::snprintf(text, sizeof text, "SDO %s node %u, %04Xh sub %u, %s: ",
                transfer.direction == SdoDirection::Upload ? "upload from" : "download to", transfer.node,
                transfer.index, transfer.subIndex, KindName(transfer.kind));
  return text + OutcomeInWords(transfer);
}

}  // namespace NBench
