// The module as a host finds it: loaded by path, spoken to through its exports alone.
#include <gtest/gtest.h>

#include <memory>

#include "host/runtime/com.h"
#include "host/runtime/shared_library.h"
#include "sdk/blocks.h"
#include "sdk/class_ids.h"
#include "sdk/generator.h"
#include "sdk/module_exports.h"
#include "sdk/persistence.h"
#include "sdk/plugin.h"
#include "sdk/scanner.h"

namespace {

using NRuntime::ComPtr;

class ModuleTest : public testing::Test {
 protected:
  template <class Function>
  Function Export(const char* name) {
    return mLibrary->Find<Function>(name);
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

  std::unique_ptr<NRuntime::SharedLibrary> mLibrary =
      std::make_unique<NRuntime::SharedLibrary>(OSTREL_MODULE);
  NSdk::DllGetPlugInCLSIDFunction GetClassId = Export<NSdk::DllGetPlugInCLSIDFunction>("DllGetPlugInCLSID");
  NSdk::DllGetClassObjectFunction GetClassObject =
      Export<NSdk::DllGetClassObjectFunction>("DllGetClassObject");
  NSdk::DllCanUnloadNowFunction CanUnload = Export<NSdk::DllCanUnloadNowFunction>("DllCanUnloadNow");
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

TEST_F(ModuleTest, RegistersNothingAndSaysSo) {
  EXPECT_EQ(Export<NSdk::DllRegisterServerFunction>("DllRegisterServer")(), S_OK);
  EXPECT_EQ(Export<NSdk::DllUnregisterServerFunction>("DllUnregisterServer")(), S_OK);
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

TEST_F(ModuleTest, AGeneratorIsAllThatAHostExpectsOfIt) {
  const ComPtr<IClassFactory> factory = Factory("HarlowPlugIn.CANopenIG");
  const auto block = Create<IUnknown>(factory);
  EXPECT_NE(block.Get(), Create<IUnknown>(factory).Get());
  EXPECT_EQ(CanUnload(), S_FALSE);
  EXPECT_TRUE(NRuntime::Query<NSdk::IPlugInBlock>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::IMSFinalNode>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::IMSTransferNode>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::IRTClient>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::ITimerSink>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::IGenerator>(block));
  NRuntime::ReceivedText progId;
  EXPECT_EQ(NRuntime::Query<NSdk::IPersistentObject>(block)->GetProgId(progId.Out()), S_OK);
  EXPECT_EQ(progId.Text(), L"HarlowPlugIn.CANopenIG");
}

TEST_F(ModuleTest, AScannerIsAllThatAHostExpectsOfIt) {
  const auto block = Create<IUnknown>(Factory("HarlowPlugIn.CANopenScanner"));
  EXPECT_EQ(CanUnload(), S_FALSE);
  EXPECT_TRUE(NRuntime::Query<NSdk::IPlugInBlock>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::IMSFinalNode>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::IRTClient>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::ICANEvents>(block));
  EXPECT_TRUE(NRuntime::Query<NSdk::IScanner>(block));
  NRuntime::ReceivedText progId;
  EXPECT_EQ(NRuntime::Query<NSdk::IPersistentObject>(block)->GetProgId(progId.Out()), S_OK);
  EXPECT_EQ(progId.Text(), L"HarlowPlugIn.CANopenScanner");
}

TEST_F(ModuleTest, IsLoadedAndUnloadedManyTimes) {
  for (int life = 0; life < 20; ++life) {
    {
      const auto plugIn = Create<NSdk::IPlugIn>(Factory("HarlowPlugIn.PlugIn"));
      const auto scanner = Create<NSdk::IScanner>(Factory("HarlowPlugIn.CANopenScanner"));
      const auto block = Create<NSdk::IGenerator>(Factory("HarlowPlugIn.CANopenIG"));
      // Brings the XML library up and down as well.
      EXPECT_EQ(block->LoadSequence(L"no such file.seq", nullptr), E_FAIL);
    }
    ASSERT_EQ(CanUnload(), S_OK);
    mLibrary.reset();
    mLibrary = std::make_unique<NRuntime::SharedLibrary>(OSTREL_MODULE);
    GetClassId = Export<NSdk::DllGetPlugInCLSIDFunction>("DllGetPlugInCLSID");
    GetClassObject = Export<NSdk::DllGetClassObjectFunction>("DllGetClassObject");
    CanUnload = Export<NSdk::DllCanUnloadNowFunction>("DllCanUnloadNow");
  }
}

}  // namespace
