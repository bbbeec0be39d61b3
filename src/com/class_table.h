#pragma once
// The classes that outsiders may create, and their factories.

#include <span>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "sdk/com_base.h"

namespace NCom {

/// Makes an object and hands out the interface that was asked for.
using CreateInstanceFunction = HRESULT (*)(REFIID iid, void** object);
/// Makes the factory of a class.
using CreateFactoryFunction = ComPtr<IClassFactory> (*)(CreateInstanceFunction createInstance);

struct CategoryEntry {
  int kind;
  const GUID* category;
};

/// One class. A row that has no `createInstance` names a class whose identity is known but which is not
/// available.
struct ClassRow {
  const char* progId;
  CLSID clsid;
  HRESULT (*updateRegistry)(bool registering);  ///< writes nothing: hosts ask the module itself
  CreateFactoryFunction createFactory;
  CreateInstanceFunction createInstance;
  ComPtr<IClassFactory> factory;  ///< made on first use
  std::uint32_t cookie;           ///< of a registration with the system; 0 = none
  const wchar_t* (*describe)();
  const CategoryEntry* (*categories)();
  void (*initialiseClass)(bool starting);
};

/// A row with the functions that all classes share.
ClassRow MakeRow(const char* progId, const CLSID& clsid, CreateFactoryFunction createFactory,
                 CreateInstanceFunction createInstance);

/// Identity of a class by ProgID, compared exactly; null counts as the first row. E_FAIL: unknown, or null
/// result.
HRESULT FindClassId(std::span<const ClassRow> table, const char* progId, CLSID* clsid);
/// The class's factory by an interface. CLASS_E_CLASSNOTAVAILABLE: no such class; E_POINTER: null result.
HRESULT GetClassObject(std::span<ClassRow> table, REFCLSID clsid, REFIID iid, void** object);
/// Runs the per-class initialisation of every row in order.
void InitialiseClasses(std::span<ClassRow> table, bool starting);
/// Releases the factories.
void ReleaseFactories(std::span<ClassRow> table);

/// A new object per request.
ComPtr<IClassFactory> MakeOrdinaryFactory(CreateInstanceFunction createInstance);
/// One object, made on the first request, for whoever asks.
ComPtr<IClassFactory> MakeSingletonFactory(CreateInstanceFunction createInstance);

/// CreateInstanceFunction of a class with a default constructor.
template <class Class>
HRESULT CreateObject(REFIID iid, void** object) {
  return Make<Class>()->QueryInterface(iid, object);
}

}  // namespace NCom
