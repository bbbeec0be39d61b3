#include <gtest/gtest.h>

#include <stdexcept>

#include "com/class_table.h"
#include "com/entry.h"
#include "sdk/class_ids.h"
#include "sdk/persistence.h"
#include "sdk/runtime.h"

namespace {

using NCom::ComPtr;
using NCom::TheModule;

int gLiving = 0;

// Two interfaces, so that identity and casts between them are put to use.
template <class Base>
class Thing final : public Base {
 public:
  Thing() { ++gLiving; }
  ~Thing() override { --gLiving; }
  HRESULT STDMETHODCALLTYPE OnTimer(NSdk::ITimer*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE ReadText(const wchar_t*, wchar_t**) override { return E_FAIL; }
};

using Ordinary = Thing<NCom::Implements<NSdk::ITimerSink, NSdk::IPersistReader>>;
using Cached = Thing<NCom::ImplementsCached<NSdk::ITimerSink, NSdk::IPersistReader>>;

TEST(Com, AnObjectHasOneIdentityAndKeepsTheModuleWhileItLives) {
  ComPtr<Ordinary> object = NCom::Make<Ordinary>();
  EXPECT_EQ(TheModule().LockCount(), 1u);

  auto reader = NCom::QueryFor<NSdk::IPersistReader>(object->Identity());
  auto sink = reader.As<NSdk::ITimerSink>();
  ASSERT_TRUE(reader && sink);
  EXPECT_EQ(reader.As<IUnknown>().Get(), sink.As<IUnknown>().Get());
  void* none = &none;
  EXPECT_EQ(reader->QueryInterface(NSdk::IidOf<NSdk::ITimer>(), &none), E_NOINTERFACE);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(reader->QueryInterface(NSdk::IidOf<IUnknown>(), nullptr), E_POINTER);

  object.Reset();
  EXPECT_EQ(gLiving, 1) << "two interface pointers still hold it";
  reader.Reset();
  sink.Reset();
  EXPECT_EQ(gLiving, 0);
  EXPECT_EQ(TheModule().LockCount(), 0u);
}

TEST(Com, EntryMapsWhatIsThrown) {
  EXPECT_EQ(NCom::Entry([] {}), S_OK);
  EXPECT_EQ(NCom::Entry([]() -> HRESULT { return S_FALSE; }), S_FALSE);
  EXPECT_EQ(NCom::Entry([] { throw std::bad_alloc(); }), E_OUTOFMEMORY);
  EXPECT_EQ(NCom::Entry([] { throw std::runtime_error("unforeseen"); }), E_FAIL);
  try {
    NCom::Entry([] { NCom::Require(static_cast<int*>(nullptr), "reader"); });
    FAIL() << "an assertion must pass";
  } catch (const NCom::ZAssertion& assertion) {
    EXPECT_STREQ(assertion.what(), "E:\"reader\"");
  }
}

class ClassTable : public testing::Test {
 protected:
  ~ClassTable() override { NCom::ReleaseFactories(mTable); }

  ComPtr<IClassFactory> Factory(const CLSID& clsid) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(NCom::GetClassObject(mTable, clsid, NSdk::IidOf<IClassFactory>(), factory.ReceiveVoid()), S_OK);
    return factory;
  }

  static ComPtr<IUnknown> Create(const ComPtr<IClassFactory>& factory) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(factory->CreateInstance(nullptr, NSdk::IidOf<IUnknown>(), object.ReceiveVoid()), S_OK);
    return object;
  }

  NCom::ClassRow mTable[2] = {
      NCom::MakeRow("One", NSdk::kClsidPlugIn, NCom::MakeSingletonFactory, NCom::CreateObject<Cached>),
      NCom::MakeRow("Many", NSdk::kClsidCANopenIG, NCom::MakeOrdinaryFactory, NCom::CreateObject<Ordinary>)};
};

TEST_F(ClassTable, FindsClassesByExactName) {
  CLSID clsid = NSdk::kClsidArray;
  EXPECT_EQ(NCom::FindClassId(mTable, "many", &clsid), E_FAIL);
  EXPECT_EQ(NCom::FindClassId(mTable, "", &clsid), E_FAIL);
  EXPECT_TRUE(clsid == NSdk::kClsidArray) << "a failure leaves the result untouched";
  EXPECT_EQ(NCom::FindClassId(mTable, "Many", nullptr), E_FAIL);
  EXPECT_EQ(NCom::FindClassId(mTable, "Many", &clsid), S_OK);
  EXPECT_TRUE(clsid == NSdk::kClsidCANopenIG);
  EXPECT_EQ(NCom::FindClassId(mTable, nullptr, &clsid), S_OK);
  EXPECT_TRUE(clsid == NSdk::kClsidPlugIn);
}

TEST_F(ClassTable, OneFactoryPerClassAndNoneForUnknownClasses) {
  EXPECT_EQ(Factory(NSdk::kClsidPlugIn).Get(), Factory(NSdk::kClsidPlugIn).Get());
  void* none = &none;
  EXPECT_EQ(NCom::GetClassObject(mTable, NSdk::kClsidArray, NSdk::IidOf<IClassFactory>(), &none),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(NCom::GetClassObject(mTable, NSdk::kClsidPlugIn, NSdk::IidOf<IClassFactory>(), nullptr),
            E_POINTER);
}

TEST_F(ClassTable, SingletonIsOneObjectThatKeepsTheModuleOnlyWhileOthersHoldIt) {
  ComPtr<IClassFactory> factory = Factory(NSdk::kClsidPlugIn);
  ComPtr<IUnknown> first = Create(factory);
  ComPtr<IUnknown> second = Create(factory);
  EXPECT_EQ(first.Get(), second.Get());
  EXPECT_EQ(gLiving, 1);

  void* object = nullptr;
  EXPECT_EQ(factory->CreateInstance(first.Get(), NSdk::IidOf<IUnknown>(), &object), CLASS_E_NOAGGREGATION);
  factory.Reset();
  EXPECT_EQ(TheModule().LockCount(), 1u) << "held from outside";
  first.Reset();
  second.Reset();
  EXPECT_EQ(TheModule().LockCount(), 0u) << "held only by its factory";
  EXPECT_EQ(gLiving, 1);
  NCom::ReleaseFactories(mTable);
  EXPECT_EQ(gLiving, 0);
}

TEST_F(ClassTable, OrdinaryFactoryMakesANewObjectPerRequest) {
  ComPtr<IClassFactory> factory = Factory(NSdk::kClsidCANopenIG);
  const ComPtr<IUnknown> first = Create(factory);
  const ComPtr<IUnknown> second = Create(factory);
  EXPECT_NE(first.Get(), second.Get());
  EXPECT_EQ(factory->CreateInstance(nullptr, NSdk::IidOf<IUnknown>(), nullptr), E_POINTER);
}

TEST_F(ClassTable, AServerLockKeepsTheModule) {
  ComPtr<IClassFactory> factory = Factory(NSdk::kClsidCANopenIG);
  const auto before = TheModule().LockCount();
  factory->LockServer(1);
  EXPECT_EQ(TheModule().LockCount(), before + 1);
  factory->LockServer(0);
  EXPECT_EQ(TheModule().LockCount(), before);
}

}  // namespace
