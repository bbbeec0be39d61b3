#include "sdo/engine/object_dictionary.h"

#include <new>

#include "sdo/engine/abort_codes.h"
#include "sdo/engine/engine.h"

namespace NSdo {

namespace {

// Counts a running callback, so that the dictionary is not freed under it.
class RunningCallback {
 public:
  explicit RunningCallback(SdoObjectDictionary& dictionary) : mDictionary(dictionary) {
    ++mDictionary.runningCallbacks;
  }
  RunningCallback(const RunningCallback&) = delete;
  RunningCallback& operator=(const RunningCallback&) = delete;
  ~RunningCallback() { --mDictionary.runningCallbacks; }

 private:
  SdoObjectDictionary& mDictionary;
};

SdoStatus FindEntry(const SdoEngine& engine, std::uint16_t index, SdoOdEntry& found) {
  if (!engine.dictionary) return SDO_E_OD_MISSING;
  SdoOdEntry** entry = engine.dictionary->entries.Find(index);
  if (entry == nullptr) return SDO_E_OD_NO_ENTRY;
  found = **entry;
  return SDO_OK;
}

SdoStatus Refuse(SdoStatus status, std::uint8_t reason, std::uint8_t& abortIndex) {
  abortIndex = reason;
  return status;
}

}  // namespace

SdoObjectDictionary::~SdoObjectDictionary() {
  for (SdoOdEntry* entry : entries) delete entry;
}

SdoStatus SdoOdCreate(SdoEngine& engine) {
  if (engine.dictionary) return SDO_OK;
  std::unique_ptr<SdoObjectDictionary> dictionary(new (std::nothrow) SdoObjectDictionary);
  if (!dictionary || !dictionary->entries.Create()) return SDO_E_NOMEM;
  engine.dictionary = std::move(dictionary);
  return SDO_OK;
}

SdoStatus SdoOdFree(SdoEngine& engine) {
  if (!engine.dictionary) return SDO_E_OD_MISSING;
  if (engine.dictionary->runningCallbacks != 0) return SDO_E_OD_FREE;
  engine.dictionary.reset();
  return SDO_OK;
}

const SdoOdEntry* SdoOdRegister(SdoEngine& engine, const SdoOdEntry& entry) {
  if (!engine.dictionary) return nullptr;
  auto& entries = engine.dictionary->entries;
  if (SdoOdEntry** existing = entries.Find(entry.index)) return *existing;
  std::unique_ptr<SdoOdEntry> copy(new (std::nothrow) SdoOdEntry(entry));
  if (!copy || !entries.Insert(copy.get())) return nullptr;
  return copy.release();
}

SdoStatus SdoOdRemove(SdoEngine& engine, std::uint16_t index, std::uint8_t) {
  if (!engine.dictionary) return SDO_E_OD_MISSING;
  SdoOdEntry** entry = engine.dictionary->entries.Find(index);
  if (entry == nullptr) return SDO_E_OD_NO_ENTRY;
  delete *entry;
  engine.dictionary->entries.Remove(entry);
  return SDO_OK;
}

SdoStatus SdoOdRead(SdoEngine& engine, std::uint16_t index, std::uint8_t subindex, std::uint32_t& size,
                    std::uint8_t* data, std::uint8_t& abortIndex) {
  SdoOdEntry entry;
  if (const SdoStatus status = FindEntry(engine, index, entry); status != SDO_OK) return status;
  if (entry.read == nullptr) return SDO_E_OD_NO_ENTRY;
  if ((entry.access & kOdReadable) == 0) return Refuse(SDO_E_OD_READ, kAbortWriteOnly, abortIndex);
  const RunningCallback running(*engine.dictionary);
  const std::uint8_t reason = entry.read(engine, static_cast<std::uint8_t>(index), subindex, size, data);
  return reason == 0 ? SDO_OK : Refuse(SDO_E_OD_READ, reason, abortIndex);
}

SdoStatus SdoOdWrite(SdoEngine& engine, std::uint16_t index, std::uint8_t subindex, std::uint32_t size,
                     const std::uint8_t* data, std::uint8_t& abortIndex) {
  SdoOdEntry entry;
  if (const SdoStatus status = FindEntry(engine, index, entry); status != SDO_OK) return status;
  if (entry.write == nullptr) return SDO_E_OD_NO_ENTRY;
  if ((entry.access & kOdWritable) == 0) return Refuse(SDO_E_OD_WRITE, kAbortReadOnly, abortIndex);
  const RunningCallback running(*engine.dictionary);
  const std::uint8_t reason = entry.write(engine, static_cast<std::uint8_t>(index), subindex, size, data);
  return reason == 0 ? SDO_OK : Refuse(SDO_E_OD_WRITE, reason, abortIndex);
}

}  // namespace NSdo
