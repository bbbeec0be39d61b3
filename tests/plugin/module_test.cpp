// The module as a host finds it: loaded by path, spoken to through its exports alone.
#include <gtest/gtest.h>

#include "host/runtime/com.h"
#include "host/runtime/shared_library.h"
#include "sdk/class_ids.h"
#include "sdk/module_exports.h"
#include "sdk/plugin.h"

namespace {

using NRuntime::ComPtr;

class ModuleTest : public testing::Test {
 protected:
  template <class Function>
  Function Export(const char* name) {
    return mLibrary.Find<Function>(name);
  }

  ComPtr<IClassFactory> Factory(const char* progId) {
    CLSID clsid = {};
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(GetClassId(progId, &clsid), S_OK);
    EXPECT_EQ(GetClassObject(clsid, NSdk::IidOf<IClassFactory>(), reinterpret_cast<void**>(factory.Out())),
              S_OK);
    return factory;
  }

  template <class Interface>
  ComPtr<Interface> Create(const ComPtr<IClassFactory>& factory) {
    ComPtr<Interface> object;
    EXPECT_EQ(
        factory->CreateInstance(nullptr, NSdk::IidOf<Interface>(), reinterpret_cast<void**>(object.Out())),
        S_OK);
    return object;
  }

  const NRuntime::SharedLibrary mLibrary{OSTREL_MODULE};
  const NSdk::DllGetPlugInCLSIDFunction GetClassId =
      Export<NSdk::DllGetPlugInCLSIDFunction>("DllGetPlugInCLSID");
  const NSdk::DllGetClassObjectFunction GetClassObject =
      Export<NSdk::DllGetClassObjectFunction>("DllGetClassObject");
  const NSdk::DllCanUnloadNowFunction CanUnload = Export<NSdk::DllCanUnloadNowFunction>("DllCanUnloadNow");
};

TEST_F(ModuleTest, TellsItsClassesByProgId) {
  const struct {
    const char* progId;
    const CLSID* expected;  // null: refused
  } rows[] = {{nullptr, &NSdk::kClsidPlugIn},
              {"HarlowPlugIn.PlugIn", &NSdk::kClsidPlugIn},
              {"HarlowPlugIn.CANopenScanner", &NSdk::kClsidCANopenScanner},
              {"HarlowPlugIn.CANopenIG", &NSdk::kClsidCANopenIG},
              {"harlowplugin.plugin", nullptr},
              {"HarlowPlugIn.CANMessage", nullptr},
              {"HarlowPlugIn.PlugIn ", nullptr}};
  for (const auto& row : rows) {
    CLSID clsid = NSdk::kClsidArray;
    EXPECT_EQ(GetClassId(row.progId, &clsid), row.expected ? S_OK : E_FAIL);
    EXPECT_TRUE(clsid == (row.expected ? *row.expected : NSdk::kClsidArray))
        << (row.progId ? row.progId : "null");
  }
  EXPECT_EQ(GetClassId(nullptr, nullptr), E_FAIL);
}

TEST_F(ModuleTest, MakesNoClassThatIsNotItsOwn) {
  void* object = nullptr;
  for (const CLSID& clsid : {NSdk::kClsidCANMessage, NSdk::kClsidArray, CLSID{}}) {
    EXPECT_EQ(GetClassObject(clsid, NSdk::IidOf<IClassFactory>(), &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
  }
}

TEST_F(ModuleTest, ThereIsOnePlugInAndItKeepsTheModuleOnlyWhileAHostHoldsIt) {
  ComPtr<IClassFactory> factory = Factory("HarlowPlugIn.PlugIn");
  auto plugIn = Create<NSdk::IPlugIn>(factory);
  EXPECT_EQ(plugIn.Get(), Create<NSdk::IPlugIn>(factory).Get());
  NRuntime::ReceivedText name;
  EXPECT_EQ(plugIn->GetName(name.Out()), S_OK);
  EXPECT_EQ(name.Text(), L"HarlowPlugIn");
  EXPECT_EQ(plugIn->GetName(nullptr), E_POINTER);
  EXPECT_EQ(plugIn->Initialise(nullptr), S_OK);
  EXPECT_EQ(plugIn->ShutDown(), S_OK);

  factory.Reset();
  EXPECT_EQ(CanUnload(), S_FALSE);
  plugIn.Reset();
  EXPECT_EQ(CanUnload(), S_OK);
}

}  // namespace
