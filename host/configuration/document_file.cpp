#include <algorithm>
#include <random>
#include <stdexcept>

#include "host/configuration/document_text.h"
#include "host/configuration/replace_file.h"
#include "host/runtime/file_text.h"
#include "host/runtime/text.h"

namespace NConfiguration {
namespace {

constexpr std::size_t kLargestFile = std::size_t{4} << 20;
constexpr std::size_t kMostFaults = 100;
constexpr std::size_t kLongestMessage = 400;  // of what a file has to do with it

// Texts of the file stand in messages: on one line, without what terminals act on, and not for ever.
std::string Printable(std::string text) {
  const auto isControl = [](char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; };
  std::replace_if(text.begin(), text.end(), isControl, '?');
  if (text.size() <= kLongestMessage) return text;
  std::size_t end = kLongestMessage;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "...";
}

std::string FaultText(const std::string& file, const Fault& fault) {
  std::string text = file + ':' + std::to_string(fault.line);
  if (fault.column != 0) text += ':' + std::to_string(fault.column);
  text += ": ";
  if (!fault.place.empty()) text += Printable(fault.place) + ": ";
  return text + Printable(fault.text);
}

// Of a document that is to be saved there is no line to tell.
std::string FaultText(const Fault& fault) {
  return (fault.place.empty() ? "" : Printable(fault.place) + ": ") + Printable(fault.text);
}

[[noreturn]] void RefuseToSave(const std::filesystem::path& file, const std::string& reason) {
  throw std::runtime_error(NRuntime::PathText(file) + ": cannot be saved: " + reason);
}

std::string CheckedText(const Document& document, const std::filesystem::path& file) {
  std::string text;
  try {
    text = DocumentText(document);
  } catch (const std::runtime_error& error) {
    RefuseToSave(file, error.what());
  }
  const ParsedDocument again = ParseDocument(text);
  if (!again.faults.empty()) RefuseToSave(file, FaultText(again.faults.front()));
  if (again.document != document) RefuseToSave(file, "a key stands twice in the settings of a block");
  if (text.size() > kLargestFile) RefuseToSave(file, "it would be too large to be read again");
  return text;
}

// Behind a link, the file that it leads to is replaced and not the link.
std::filesystem::path TargetOf(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_symlink(file, error)) return file;
  const std::filesystem::path target = std::filesystem::weakly_canonical(file, error);
  return error ? file : target;
}

std::filesystem::path TemporaryFile(const std::filesystem::path& file) {
  std::filesystem::path name = file;
  name += "." + std::to_string(std::random_device()()) + ".tmp";
  return name;
}

void Replace(const std::filesystem::path& target, const std::string& text,
             const std::filesystem::path& named) {
  std::error_code error = CheckWritable(target);
  if (error) RefuseToSave(named, error.message());
  std::filesystem::path temporary;
  int attempts = 3;
  do {
    temporary = TemporaryFile(target);
    error = WriteNewFile(temporary, text, target);
  } while (error == std::errc::file_exists && --attempts > 0);
  if (!error) error = RenameOver(temporary, target);
  if (!error) return;
  std::error_code ignored;
  if (error != std::errc::file_exists) std::filesystem::remove(temporary, ignored);  // else somebody else's
  RefuseToSave(named, error.message());
}

}  // namespace

const std::string* Block::Find(const std::string& key) const {
  const auto found = std::find_if(settings.begin(), settings.end(),
                                  [&](const Setting& setting) { return setting.first == key; });
  return found == settings.end() ? nullptr : &found->second;
}

const Block* Document::FindBlock(const std::string& progId) const {
  const auto found =
      std::find_if(blocks.begin(), blocks.end(), [&](const Block& block) { return block.progId == progId; });
  return found == blocks.end() ? nullptr : &*found;
}

LoadedDocument Inspect(const std::filesystem::path& file) {
  const std::string name = NRuntime::PathText(file);
  const NRuntime::FileText read = NRuntime::ReadFileBytes(file, kLargestFile);
  if (read.state != NRuntime::FileState::Read) return {{}, {name + ": " + read.reason}};
  ParsedDocument parsed = ParseDocument(read.text);
  LoadedDocument loaded = {std::move(parsed.document), {}};
  for (const Fault& fault : parsed.faults) {
    if (loaded.faults.size() == kMostFaults) break;
    loaded.faults.push_back(FaultText(name, fault));
  }
  return loaded;
}

Document Load(const std::filesystem::path& file) {
  LoadedDocument loaded = Inspect(file);
  if (!loaded.faults.empty()) throw std::runtime_error(loaded.faults.front());
  return std::move(loaded.document);
}

void Save(const Document& document, const std::filesystem::path& file) {
  const std::string text = CheckedText(document, file);
  const std::filesystem::path target = TargetOf(file);
  std::error_code ignored;
  const auto status = std::filesystem::status(target, ignored);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    RefuseToSave(file, "something else than a file has this name");
  }
  Replace(target, text, file);
}

}  // namespace NConfiguration
