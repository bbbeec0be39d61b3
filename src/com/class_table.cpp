#include "com/class_table.h"

#include <cstring>
#include <mutex>

#include "com/entry.h"

namespace NCom {
namespace {

HRESULT UpdateNoRegistry(bool) { return S_OK; }
const wchar_t* DescribeNothing() { return nullptr; }
const CategoryEntry* NoCategories() { return nullptr; }
void InitialiseNothing(bool) {}

// What both kinds of factory share. The module keeps its factories, so they do not keep the module.
class FactoryBase : public ImplementsCached<IClassFactory> {
 public:
  explicit FactoryBase(CreateInstanceFunction createInstance) : mCreateInstance(createInstance) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    return Entry([&]() -> HRESULT {
      if (!object) return E_POINTER;
      *object = nullptr;
      if (outer) return CLASS_E_NOAGGREGATION;
      return Create(iid, object);
    });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    lock ? TheModule().Lock() : TheModule().Unlock();
    return S_OK;
  }

 protected:
  virtual HRESULT Create(REFIID iid, void** object) = 0;

  const CreateInstanceFunction mCreateInstance;
};

class OrdinaryFactory final : public FactoryBase {
 public:
  using FactoryBase::FactoryBase;

 private:
  HRESULT Create(REFIID iid, void** object) override { return mCreateInstance(iid, object); }
};

class SingletonFactory final : public FactoryBase {
 public:
  using FactoryBase::FactoryBase;

 private:
  HRESULT Create(REFIID iid, void** object) override {
    if (!mOnly) {
      const HRESULT result = mCreateInstance(NSdk::IidOf<IUnknown>(), mOnly.ReceiveVoid());
      if (FAILED(result)) return result;
    }
    return mOnly->QueryInterface(iid, object);
  }

  ComPtr<IUnknown> mOnly;
};

ClassRow* FindRow(std::span<ClassRow> table, REFCLSID clsid) {
  for (ClassRow& row : table) {
    if (row.clsid == clsid && row.createInstance) return &row;
  }
  return nullptr;
}

}  // namespace

ClassRow MakeRow(const char* progId, const CLSID& clsid, CreateFactoryFunction createFactory,
                 CreateInstanceFunction createInstance) {
  return {progId, clsid,        UpdateNoRegistry, createFactory, createInstance,
          {},     /*cookie=*/0, DescribeNothing,  NoCategories,  InitialiseNothing};
}

HRESULT FindClassId(std::span<const ClassRow> table, const char* progId, CLSID* clsid) {
  if (!clsid) return E_FAIL;
  for (const ClassRow& row : table) {
    if (progId && std::strcmp(progId, row.progId) != 0) continue;
    *clsid = row.clsid;
    return S_OK;
  }
  return E_FAIL;
}

HRESULT GetClassObject(std::span<ClassRow> table, REFCLSID clsid, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  ClassRow* row = FindRow(table, clsid);
  if (!row) return CLASS_E_CLASSNOTAVAILABLE;
  if (!row->factory) {
    const std::lock_guard lock(TheModule().FactorySection());
    if (!row->factory) row->factory = row->createFactory(row->createInstance);
  }
  return row->factory->QueryInterface(iid, object);
}

void InitialiseClasses(std::span<ClassRow> table, bool starting) {
  for (ClassRow& row : table) row.initialiseClass(starting);
}

void ReleaseFactories(std::span<ClassRow> table) {
  for (ClassRow& row : table) row.factory.Reset();
}

ComPtr<IClassFactory> MakeOrdinaryFactory(CreateInstanceFunction createInstance) {
  return ComPtr<IClassFactory>::Adopt(new OrdinaryFactory(createInstance));
}

ComPtr<IClassFactory> MakeSingletonFactory(CreateInstanceFunction createInstance) {
  return ComPtr<IClassFactory>::Adopt(new SingletonFactory(createInstance));
}

}  // namespace NCom
