#include "common/hash_map.h"

#include <utility>
#include <vector>

#include "com/entry.h"
#include "com/implements.h"
#include "common/array.h"

namespace NCommon {
namespace {

using Object = NCom::ComPtr<IUnknown>;

struct Slot {
  Object object;  // empty: the slot is free
  std::uint32_t key = 0;
};

using Table = std::vector<Slot>;

// The slot where the key is or would be put; null when all candidates hold other keys. The step of 5 belongs
// to the table's layout: in a table whose size is a multiple of 5 only every fifth slot is a candidate.
Slot* Probe(Table& table, std::uint32_t key) {
  constexpr std::uint32_t kStep = 5;
  const auto size = static_cast<std::uint32_t>(table.size());
  for (std::uint32_t attempt = 0; attempt < size; ++attempt) {
    Slot& slot = table[(key + kStep * attempt) % size];
    if (!slot.object || slot.key == key) return &slot;
  }
  return nullptr;
}

// Moves the objects into the new table; those that find no place stay behind. Each of these shortens the walk
// by one slot, so that the last slots may never be looked at. Their objects are neither moved nor released:
// clients may go on with plain pointers to what a resize has skipped, so the map's reference is given up, not
// taken back.
void MoveObjects(Table& from, Table& to) {
  std::size_t bound = from.size();
  std::size_t position = 0;
  for (; position < bound; ++position) {
    Slot& slot = from[position];
    if (!slot.object) continue;
    if (Slot* place = Probe(to, slot.key)) {
      place->object = std::move(slot.object);
      place->key = slot.key;
    } else {
      --bound;
    }
  }
  for (; position < from.size(); ++position) from[position].object.Detach();
}

class ZHashMap final : public NCom::Implements<NSdk::IHashMap> {
 public:
  HRESULT STDMETHODCALLTYPE GetCount(std::int32_t* count) override {
    NCom::ModuleScope scope;
    if (!count) return E_INVALIDARG;
    *count = mCount;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetTableSize(std::int32_t* size) override {
    NCom::ModuleScope scope;
    if (!size) return E_INVALIDARG;
    *size = static_cast<std::int32_t>(mTable.size());
    return S_OK;
  }

  // The count stays as it is, even when objects are dropped.
  HRESULT STDMETHODCALLTYPE Resize(std::int32_t size) override {
    return NCom::Entry([&] {
      if (size < 0 || size > kMaxHashMapSize) return E_OUTOFMEMORY;
      Table table(static_cast<std::size_t>(size));
      MoveObjects(mTable, table);
      // The map is whole again before the old table releases what it still holds.
      mTable.swap(table);
      return S_OK;
    });
  }

  HRESULT STDMETHODCALLTYPE Lookup(std::uint32_t key, REFIID iid, void** object) override {
    NCom::ModuleScope scope;
    if (!object) return E_INVALIDARG;
    const Slot* slot = Probe(mTable, key);
    if (!slot || !slot->object) return E_FAIL;
    const Object found = slot->object;
    return found->QueryInterface(iid, object);
  }

  HRESULT STDMETHODCALLTYPE Set(std::uint32_t key, IUnknown* object) override {
    NCom::ModuleScope scope;
    if (!object) return E_INVALIDARG;
    Object identity;
    const HRESULT result = object->QueryInterface(NSdk::IidOf<IUnknown>(), identity.ReceiveVoid());
    if (FAILED(result)) return result;
    Slot* slot = Probe(mTable, key);
    if (!slot) return E_FAIL;
    // What the key had is released at the very end: its destructor may come back to this map.
    const Object former = std::exchange(slot->object, std::move(identity));
    slot->key = key;
    if (!former) ++mCount;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Remove(std::uint32_t) override { return E_FAIL; }
  HRESULT STDMETHODCALLTYPE GetKeys(NSdk::IArray**) override { return E_FAIL; }

  HRESULT STDMETHODCALLTYPE Clear() override {
    NCom::ModuleScope scope;
    mCount = 0;
    for (std::size_t position = 0; position < mTable.size(); ++position) {
      // Out of the table before it is released: its destructor may come back to this map.
      const Object dying = std::move(mTable[position].object);
    }
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetValues(NSdk::IArray** values) override {
    return NCom::Entry([&] {
      if (!values) return E_INVALIDARG;
      std::vector<Object> objects;
      for (const Slot& slot : mTable) {
        if (slot.object) objects.push_back(slot.object);
      }
      *values = MakeArray(std::move(objects)).Detach();
      return S_OK;
    });
  }

 private:
  Table mTable;
  std::int32_t mCount = 0;
};

}  // namespace

NCom::ComPtr<NSdk::IHashMap> MakeHashMap() { return NCom::Make<ZHashMap>().Get(); }

}  // namespace NCommon
