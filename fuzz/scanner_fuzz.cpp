// Arbitrary messages with arbitrary channels and times for the scanner block, whose table must keep its bound
// and whose rows must be readable. The input is a list of operations, each a byte with its arguments behind
// it.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "com/task_text.h"
#include "fuzz/input.h"
#include "scanner/scanner.h"
#include "tests/idle_runtime.h"

namespace {

constexpr std::uint32_t kLargestTable = 32 * 128;

void Require(bool condition) {
  if (!condition) std::abort();
}

class Message final : public NCom::Implements<NSdk::ICANMessage> {
 public:
  explicit Message(NFuzz::Input& input) {
    const unsigned shape = input.Byte();
    // Mostly identifiers and channels that mean something.
    identifier = (shape & 1) ? input.Number() : input.Word() & 0x7FF;
    channel = (shape & 2) ? input.Number() : 1 + (shape >> 6);
    size = (shape & 4) ? input.Byte() : 8;
    remote = (shape & 0x18) == 0x18;
    readable = (shape & 0x38) != 0x38;
    for (std::uint8_t& byte : data) byte = input.Byte();
  }

  HRESULT STDMETHODCALLTYPE GetIdentifier(std::uint32_t* value) override { return Set(value, identifier); }
  HRESULT STDMETHODCALLTYPE GetExtended(std::uint32_t* value) override { return Set(value, 0); }
  HRESULT STDMETHODCALLTYPE GetDataLength(std::uint32_t* value) override { return Set(value, size); }
  HRESULT STDMETHODCALLTYPE GetChannel(std::uint32_t* value) override { return Set(value, channel); }
  HRESULT STDMETHODCALLTYPE GetDirection(std::uint32_t* value) override { return Set(value, 0); }
  HRESULT STDMETHODCALLTYPE GetRemote(std::uint32_t* value) override { return Set(value, remote); }
  HRESULT STDMETHODCALLTYPE GetTimeStamp(std::int64_t*) override { return E_FAIL; }
  HRESULT STDMETHODCALLTYPE CopyData(std::uint32_t offset, std::uint8_t* buffer,
                                     std::uint32_t count) override {
    if (!readable) return E_FAIL;
    Require(offset <= sizeof(data) && count <= sizeof(data) - offset);
    std::memcpy(buffer, data + offset, count);
    return S_OK;
  }

 private:
  static HRESULT Set(std::uint32_t* result, std::uint32_t value) {
    *result = value;
    return S_OK;
  }

  std::uint32_t identifier = 0;
  std::uint32_t channel = 0;
  std::uint32_t size = 0;
  bool remote = false;
  bool readable = true;
  std::uint8_t data[8] = {};
};

void ReadRow(NScanner::ZCANopenScanner& scanner, NSdk::ICANopenNode& node) {
  NCom::TaskText text;
  std::uint32_t image = 99;
  for (std::uint32_t column = 0; column < NSdk::kScannerColumns; ++column) {
    Require(scanner.GetCellText(&node, column, 16, text.Receive()) == S_OK);
  }
  Require(scanner.GetToolTip(&node, text.Receive()) == S_OK);
  Require(scanner.GetRowImage(&node, &image) == S_OK && image < 8);
}

void ReadTable(NScanner::ZCANopenScanner& scanner) {
  NCom::ComPtr<NSdk::IArray> nodes;
  std::uint32_t count = 0;
  Require(scanner.GetNodes(nodes.Receive()) == S_OK);
  Require(nodes->GetCount(&count) == S_OK && count <= kLargestTable);
  for (std::uint32_t position = 0; position < count; ++position) {
    NCom::ComPtr<NSdk::ICANopenNode> node;
    Require(nodes->GetElement(position, NSdk::IidOf<NSdk::ICANopenNode>(), node.ReceiveVoid()) == S_OK);
    ReadRow(scanner, *node);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NFuzz::Input input(data, size);
  const auto scanner = NCom::Make<NScanner::ZCANopenScanner>();
  const auto runtime = NCom::Make<NTest::IdleRuntime>();
  Require(scanner->StartMeasurement(runtime.Get()) == S_OK);
  while (!input.IsEmpty()) {
    const unsigned operation = input.Byte();
    if (operation < 0xE0) {
      scanner->OnCanMessage(NCom::Make<Message>(input).Get());
    } else if (operation < 0xF8) {
      for (unsigned tick = operation & 0x0F; tick > 0; --tick) scanner->OnTimer(nullptr);
    } else if (operation < 0xFD) {
      scanner->NotifyObservers();
      ReadTable(*scanner);
    } else if (operation == 0xFD) {
      scanner->Clear();
    } else {
      scanner->StopMeasurement();
      Require(scanner->StartMeasurement(runtime.Get()) == S_OK);
    }
  }
  ReadTable(*scanner);
  scanner->StopMeasurement();
  return 0;
}
